// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "LiveSource.h"
#include "TestMedia.h"

#include <QUdpSocket>

LiveSource::LiveSource(const QString &file, const QString &format, const QString &address)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start("ffmpeg",
                    {"-hide_banner",
                     "-nostdin",
                     "-loglevel",
                     "fatal",
                     "-re",
                     "-stream_loop",
                     "-1",
                     "-i",
                     file,
                     "-map",
                     "0",
                     "-c",
                     "copy",
                     "-streamid",
                     QString("0:%1").arg(TestMedia::videoPid),
                     "-streamid",
                     QString("1:%1").arg(TestMedia::russianPid),
                     "-streamid",
                     QString("2:%1").arg(TestMedia::englishPid),
                     "-f",
                     format,
                     address});
    m_process.waitForStarted();
}

LiveSource::~LiveSource()
{
    stop();
}

void LiveSource::stop()
{
    m_process.kill();
    m_process.waitForFinished();
}

int freeUdpPort()
{
    QUdpSocket socket;
    socket.bind(QHostAddress(QHostAddress::LocalHost));
    return socket.localPort();
}
