// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BadSources.h"
#include "LiveSource.h"
#include "TestMedia.h"

#include "tests/support/BoxFile.h"

namespace {

QByteArray loopback(const char *scheme, int port, const char *rest = "")
{
    return QByteArray(scheme) + "://127.0.0.1:" + QByteArray::number(port) + rest;
}

} // namespace

bool BadSources::prepare()
{
    // The servers are on this computer.
    for (const char *proxy : {"http_proxy", "HTTP_PROXY", "all_proxy"})
        qunsetenv(proxy);
    constexpr char whole[] = "/mnt/stb/whole.mp4";
    if (!TestMedia::makeBars(bars, 6)
        || !TestMedia::ffmpeg({"-i", bars, "-map", "0:0", "-c", "copy", "-movflags", "faststart", whole})
        || !TestMedia::ffmpeg({"-i", bars, "-map", "0", "-c", "copy", "-f", "segment", "-segment_time", "1",
                               "-segment_list_size", "0", "/mnt/stb/segment%d.ts"}))
        return false;
    const QByteArray film = boxFile(whole);
    const QByteArray stream = boxFile(bars);
    const QByteArray garbage = QByteArray("\x13\x99garbage\0\xfe\x01", 12).repeated(20000);
    writeBoxFile("/mnt/stb/cut.mp4", film.left(film.size() / 3));
    writeBoxFile("/mnt/stb/garbage.ts", garbage);
    writeBoxFile("/mnt/stb/empty.ts", {});

    m_server.serve("/stalled.ts", HttpServer::Page{stream, "video/mp2t", 200, {}, 0, stream.size() / 6});
    m_server.serve("/stalled-early.ts", HttpServer::Page{stream, "video/mp2t", 200, {}, 0, 1000});
    m_server.serve("/garbage", HttpServer::Page{garbage, "video/mp2t"});
    m_server.serve("/nothing", HttpServer::Page{"", "video/mp2t"});
    m_server.serve("/page", "<html><body>a page</body></html>");
    m_server.redirect("/circle", m_server.url("/circle"));
    serveSegments();
    m_silent.fallSilent();
    m_refusing.refuse();
    m_truncating = std::make_unique<RawServer>(RawServer::cutOff(film.left(film.size() / 3), film.size()));
    m_truncatingStream = std::make_unique<RawServer>(RawServer::cutOff(stream.left(stream.size() / 3), stream.size()));
    m_closing = std::make_unique<RawServer>(QByteArray());

    m_noisePort = freeUdpPort();
    QObject::connect(&m_noiseTimer, &QTimer::timeout, &m_noise, [this, noise = garbage.left(1316)] {
        m_noise.writeDatagram(noise, QHostAddress(QHostAddress::LocalHost), static_cast<quint16>(m_noisePort));
    });
    m_noiseTimer.start(10);
    return true;
}

// Playlists of which not all comes.
void BadSources::serveSegments()
{
    QByteArray list = "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:1\n";
    for (int i = 0; i < segments; ++i) {
        const QByteArray name = "segment" + QByteArray::number(i) + ".ts";
        list += "#EXTINF:1.0,\n" + name + '\n';
        const HttpServer::Page segment{boxFile("/mnt/stb/" + name), "video/mp2t"};
        m_server.serve('/' + name, segment);
        m_server.serve("/half/" + name, i < segments / 2 ? segment : HttpServer::Page{"", "text/plain", 503});
    }
    const char type[] = "application/x-mpegURL";
    m_server.serve("/half/list.m3u8", HttpServer::Page{list + "#EXT-X-ENDLIST\n", type});
    m_server.serve("/unfinished.m3u8", HttpServer::Page{list, type});
    // The core and FFmpeg ask once each before it plays.
    m_server.serve("/failing.m3u8", HttpServer::Page{list, type, 200, {}, 0, -1, 2});
}

std::vector<BadSource> BadSources::all() const
{
    const QByteArray group = "239.255.77.2:" + QByteArray::number(freeUdpPort()) + "?localaddr=127.0.0.1";
    return {
        {"refused", m_refusing.url().toEncoded(), "refused"},
        {"no such host", "http://no-such-host.invalid/a.ts", "loading failed"},
        {"a dead host", loopback("http", m_dead.port(), "/a.ts"), "nothing arrives"},
        {"never answers", silentServer(), "nothing arrives"},
        {"not found", page("/missing.ts"), "404"},
        {"stalls while it plays", page("/stalled.ts"), "nothing arrives", 1000},
        {"stalls at once", page("/stalled-early.ts"), "nothing arrives"},
        {"endless redirect", page("/circle"), "loading failed"},
        {"garbage over HTTP", page("/garbage"), "unrecognized file format"},
        {"nothing over HTTP", page("/nothing"), "unrecognized file format"},
        {"a web page", page("/page"), "unrecognized file format"},
        {"cut off over HTTP", m_truncating->url().toUtf8(), "breaks off at"},
        {"cut off without a duration", m_truncatingStream->url().toUtf8(), "breaks off at"},
        {"playlist of segments of which half fail", page("/half/list.m3u8"), "5XX", 2000},
        {"playlist that fails while it plays", page("/failing.m3u8"), "5XX", 6000},
        {"playlist that does not go on", page("/unfinished.m3u8"), "promises more", 6000},
        {"closes at once", m_closing->url().toUtf8(), "loading failed"},
        {"missing file", "/mnt/stb/missing.ts", "No such file"},
        {"folder", "/mnt/stb", "not a file or a stream"},
        {"device", "/dev/zero", "not a file or a stream"},
        {"garbage file", "/mnt/stb/garbage.ts", "unrecognized file format"},
        {"empty file", "/mnt/stb/empty.ts", "unrecognized file format"},
        {"cut off file", "/mnt/stb/cut.mp4", "breaks off at"},
        {"silent UDP port", loopback("udp", freeUdpPort()), "nothing arrives"},
        {"garbage over UDP", loopback("udp", m_noisePort), "nothing arrives"},
        {"silent multicast group", "udp://" + group, "nothing arrives"},
        {"silent RTP port", loopback("rtp", freeUdpPort()), "nothing arrives"},
        {"RTSP refused", loopback("rtsp", m_refusing.port(), "/a"), "refused"},
        {"RTSP from a dead host", loopback("rtsp", m_dead.port(), "/a"), "nothing arrives"},
        {"RTSP silent", loopback("rtsp", m_silent.port(), "/a"), "nothing arrives"},
        {"unknown scheme", "gopher-tv://127.0.0.1/a", "not a file or a stream"},
        {"not a magnet link", "magnet:?xt=nothing", "not a magnet link"},
        {"a torrent of nobody", nobodysMagnet, "nothing arrives"},
    };
}

int BadSources::play(KVR_ID id, const QByteArray &address)
{
    if (address.startsWith('/'))
        return KVR_PlayFile(id, address, 0, 0, 0, "", -1, -1, -1);
    if (address.startsWith("magnet:"))
        return KVR_PlayMagnet(id, address, "", 0, 0, 0, 0, -1, -1, -1);
    if (address.startsWith("rtsp:"))
        return KVR_PlayRtsp(id, address, 0, 1, -1, -1, -1);
    if (address.startsWith("http:"))
        return KVR_PlayHttp(id, address, "", -1, -1, -1);
    return KVR_PlayStream(id, address, -1, -1, -1);
}
