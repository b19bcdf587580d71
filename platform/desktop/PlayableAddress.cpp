// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PlayableAddress.h"
#include "Address.h"

#include <algorithm>
#include <sys/stat.h>

using namespace Desk;

namespace {

const char *const networkSchemes[] = {"ftp",   "http",  "https", "mms",    "mmsh",   "mmst", "rist", "rtmp",
                                      "rtmpe", "rtmps", "rtmpt", "rtmpte", "rtmpts", "rtp",  "rtsp", "rtsps",
                                      "sftp",  "srt",   "srtp",  "tcp",    "tls",    "udp"};

// What else a path may stand for might never end or never begin. Of a path to nothing, the core tells the reason.
bool isFileOrNothing(const std::string &path)
{
    struct stat status = {};
    return path != "-" && (::stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode));
}

} // namespace

// Addresses of any other scheme are for a program's own use: the core would, say, close a file of the box's that it has
// open for "fdclose://3".
bool Desk::isPlayable(const std::string &address)
{
    const std::string scheme = Address(address).scheme();
    if (scheme.empty())
        return isFileOrNothing(address);
    return std::find(std::begin(networkSchemes), std::end(networkSchemes), scheme) != std::end(networkSchemes);
}
