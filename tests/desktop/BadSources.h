// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "DeadHost.h"
#include "RawServer.h"

#include "platform/stbapi.h"

#include "tests/support/HttpServer.h"

#include <QByteArray>
#include <QTimer>
#include <QUdpSocket>

#include <memory>
#include <vector>

/// A source that cannot be played.
struct BadSource
{
    QByteArray name;
    QByteArray address;
    QByteArray reason; ///< a part of what the log says of it
    int playable = 0;  ///< milliseconds of it
};

/// Sources that fail in all the ways that sources have: files below /mnt/stb, and servers that live as long as this.
class BadSources
{
public:
    static constexpr char bars[] = "/mnt/stb/bars.ts"; ///< a good one
    static constexpr char silentPort[] = "udp://127.0.0.1:45454";
    static constexpr char nobodysMagnet[] = "magnet:?xt=urn:btih:0123456789abcdef0123456789abcdef01234567";

    /// Makes the files and starts the servers. Answers whether that could be done.
    bool prepare();

    std::vector<BadSource> all() const;
    QByteArray silentServer() const { return m_silent.url("/a.ts").toEncoded(); }

    /// Plays an address by the function that is meant for it.
    static int play(KVR_ID id, const QByteArray &address);

private:
    static constexpr int segments = 6; // a second each

    void serveSegments();
    QByteArray page(const char *path) const { return m_server.url(path).toEncoded(); }

    HttpServer m_server;
    HttpServer m_silent;
    HttpServer m_refusing;
    DeadHost m_dead;
    QUdpSocket m_noise;
    QTimer m_noiseTimer;
    int m_noisePort = 0;
    std::unique_ptr<RawServer> m_truncating;
    std::unique_ptr<RawServer> m_truncatingStream;
    std::unique_ptr<RawServer> m_closing;
};
