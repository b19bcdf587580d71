// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "HlsPlaylist.h"

#include <QUrl>
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <sstream>

using namespace Desk;

namespace {

bool begins(const std::string &line, const char *tag)
{
    return line.rfind(tag, 0) == 0;
}

// The value of an attribute of a tag, without its quotes; an empty text when there is none.
std::string attribute(const std::string &line, const std::string &name)
{
    for (std::size_t begin = line.find(':'); begin != std::string::npos && begin < line.size();) {
        const std::size_t equals = line.find('=', ++begin);
        if (equals == std::string::npos)
            return {};
        const bool isQuoted = line.compare(equals + 1, 1, "\"") == 0;
        const std::size_t valueBegin = equals + (isQuoted ? 2 : 1);
        const std::size_t valueEnd = std::min(line.find(isQuoted ? '"' : ',', valueBegin), line.size());
        const std::size_t nameBegin = line.find_first_not_of(' ', begin);
        if (line.compare(nameBegin, equals - nameBegin, name) == 0)
            return line.substr(valueBegin, valueEnd - valueBegin);
        begin = line.find(',', valueEnd);
    }
    return {};
}

std::string absolute(const std::string &base, const std::string &address)
{
    // Paths have no escapes.
    if (base.find("://") == std::string::npos) {
        const bool isWhole = address.find("://") != std::string::npos || address.front() == '/';
        return isWhole ? address : base.substr(0, base.rfind('/') + 1) + address;
    }
    const auto url = [](const std::string &text) { return QUrl::fromEncoded(QByteArray::fromStdString(text)); };
    return url(base).resolved(url(address)).toEncoded().toStdString();
}

} // namespace

HlsPlaylist::HlsPlaylist(const std::string &text, const std::string &base)
{
    std::istringstream lines(text);
    std::optional<int> bitrate; // of the playlist in the next line
    for (std::string line; std::getline(lines, line);) {
        line.erase(line.find_last_not_of(" \r\t") + 1);
        if (begins(line, "#EXT-X-STREAM-INF:")) {
            bitrate = std::atoi(attribute(line, "BANDWIDTH").c_str());
        } else if (begins(line, "#EXT-X-MEDIA:")) {
            const std::string type = attribute(line, "TYPE");
            const std::string address = attribute(line, "URI");
            if (!address.empty() && (type == "AUDIO" || type == "VIDEO")) {
                playlists.push_back(absolute(base, address));
                bitrates.push_back(0);
            }
        } else if (begins(line, "#EXT-X-KEY:")) {
            isEncrypted = attribute(line, "METHOD") != "NONE";
        } else if (begins(line, "#EXT-X-MAP:")) {
            header = absolute(base, attribute(line, "URI"));
        } else if (begins(line, "#EXT-X-ENDLIST")) {
            hasEnded = true;
        } else if (!line.empty() && line.front() != '#') {
            (bitrate ? playlists : segments).push_back(absolute(base, line));
            if (bitrate)
                bitrates.push_back(*bitrate);
            bitrate.reset();
        }
    }
}
