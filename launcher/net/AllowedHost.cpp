// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "AllowedHost.h"

#include <QRegularExpression>
#include <QUrl>

std::optional<AllowedHost> AllowedHost::parse(const QString &text)
{
    static const QRegularExpression form(R"(^(?:\[([^\]]+)\]|([^:]+))(?::(\d{1,5}))?$)");
    // The last part of a name has a letter, or it would be an address of some sort.
    static const QRegularExpression nameForm(R"(^(?=.{1,253}$)([a-z0-9_-]{1,63}\.)*[0-9_-]*[a-z][a-z0-9_-]{0,62}$)");

    AllowedHost host;
    host.m_address = NetAddress::fromText(text);
    if (host.m_address)
        return host;
    const QRegularExpressionMatch match = form.match(text);
    const int port = match.captured(3).toInt();
    if (!match.hasMatch() || (match.capturedLength(3) > 0 && (port < 1 || port > 0xffff)))
        return std::nullopt;
    if (port > 0)
        host.m_port = std::uint16_t(port);
    const bool isBracketed = match.capturedLength(1) > 0;
    host.m_address = NetAddress::fromText(match.captured(isBracketed ? 1 : 2));
    if (host.m_address)
        return host;
    host.m_name = normalized(match.captured(2));
    if (isBracketed || !nameForm.match(QString::fromLatin1(host.m_name)).hasMatch())
        return std::nullopt;
    return host;
}

QByteArray AllowedHost::normalized(const QString &name)
{
    const QByteArray ascii = QUrl::toAce(name.endsWith('.') ? name.chopped(1) : name);
    return ascii.toLower();
}
