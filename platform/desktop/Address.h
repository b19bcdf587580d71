// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace Desk {

/// The address of a stream, or a path, taken apart.
class Address
{
public:
    explicit Address(const std::string &text);

    /// As it was given, but for the scheme's letters, which are small: the libraries that read streams know no others.
    const std::string &text() const { return m_text; }

    /// In small letters; empty for a path.
    const std::string &scheme() const { return m_scheme; }

    /// The name or number; an IPv6 address in brackets. Empty when there is none.
    const std::string &host() const { return m_host; }

    /// Host and port as in the address, without what may stand before them: "239.1.1.1:1234".
    std::string hostAndPort() const;

    /// This address under another scheme.
    std::string withScheme(const std::string &scheme) const;

private:
    std::string m_text;
    std::string m_scheme;
    std::string m_host;
    std::string m_port;
};

} // namespace Desk
