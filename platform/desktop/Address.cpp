// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Address.h"

#include <algorithm>
#include <curl/curl.h>
#include <iterator>
#include <memory>

using namespace Desk;

namespace {

char small(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string partOf(CURLU *url, CURLUPart part)
{
    char *text = nullptr;
    if (curl_url_get(url, part, &text, 0) != CURLUE_OK)
        return {};
    const std::unique_ptr<char, decltype(&curl_free)> owner(text, curl_free);
    return text;
}

} // namespace

Address::Address(const std::string &text)
    : m_text(text)
{
    const std::size_t end = text.find("://");
    if (end == std::string::npos || text.front() == '/')
        return;
    std::transform(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), std::back_inserter(m_scheme), small);
    m_text = withScheme(m_scheme);

    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
    // Streams may do without a host, as in "udp://@:1234", which the library takes for a mistake.
    if (!url || curl_url_set(url.get(), CURLUPART_URL, m_text.c_str(), CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK)
        return;
    m_host = partOf(url.get(), CURLUPART_HOST);
    m_port = partOf(url.get(), CURLUPART_PORT);
}

std::string Address::hostAndPort() const
{
    return m_port.empty() ? m_host : m_host + ':' + m_port;
}

std::string Address::withScheme(const std::string &scheme) const
{
    const std::size_t end = m_text.find(':');
    return end == std::string::npos ? m_text : scheme + m_text.substr(end);
}
