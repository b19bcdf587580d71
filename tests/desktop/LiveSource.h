// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QProcess>
#include <QString>

/// A stream sent by ffmpeg, over and over in real time, for as long as it lives.
class LiveSource
{
public:
    /// format: mpegts for UDP, rtp_mpegts for RTP.
    LiveSource(const QString &file, const QString &format, const QString &address);
    ~LiveSource();
    LiveSource(const LiveSource &) = delete;
    LiveSource &operator=(const LiveSource &) = delete;

    void stop();

private:
    QProcess m_process;
};

/// A UDP port of this machine that nobody uses.
int freeUdpPort();
