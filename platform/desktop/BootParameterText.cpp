// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BootParameterText.h"

#include <QByteArray>
#include <sstream>

using namespace Desk;

namespace {

// What would break a line, or the line's key, is written as % and two hexadecimal digits; what people read in a value
// stays as it is.
std::string escaped(const std::string &text)
{
    return QByteArray::fromStdString(text).toPercentEncoding(" !\"#$&'()*+,/:;<>?@[\\]^`{|}").toStdString();
}

std::string unescaped(const std::string &text)
{
    return QByteArray::fromPercentEncoding(QByteArray::fromStdString(text)).toStdString();
}

} // namespace

std::string Desk::bootParameterText(const BootParameterValues &values)
{
    std::string text;
    for (const auto &[key, value] : values)
        text += escaped(key) + '=' + escaped(value) + '\n';
    return text;
}

BootParameterValues Desk::readBootParameterText(const std::string &text, std::vector<std::string> *ignored)
{
    BootParameterValues values;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t separator = line.find('=');
        if (separator != std::string::npos && separator != 0)
            values[unescaped(line.substr(0, separator))] = unescaped(line.substr(separator + 1));
        else
            ignored->push_back(line);
    }
    return values;
}
