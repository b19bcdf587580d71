// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "LastLines.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <memory>
#include <vector>

class Outlet;

/// All that a box writes, on its way to this process's standard output and error: unchanged to a file or a pipe, made
/// harmless to a terminal. While it lives, report() goes the same way, in order, and the lines that the process inside
/// reports over its Channel too. Nobody waits for an output that nobody reads.
class BoxOutput : public QObject
{
    Q_OBJECT

public:
    BoxOutput();
    /// Waits until all is written, unless nobody reads it.
    ~BoxOutput() override;

    /// Before each start of a box. False and errno if there can be no sockets.
    bool open();
    /// In the process that is going to be the box, before it is.
    void becomeStandardOutput() const;
    /// The descriptor of the box's end of the Channel.
    int channel() const { return m_boxChannel; }
    /// When that process has been started.
    void closeBoxEnds();
    /// When that process has ended: passes on what it has written last. Programs that it has left behind are not waited
    /// for.
    void close();

    /// The page that the box has told of last, and the memory that it had when it crashed, in bytes; 0 if it has not
    /// told.
    QString page() const { return QString::fromUtf8(m_page); }
    qulonglong memory() const { return m_memory; }
    const LastLines &lastLines() const { return m_lastLines; }

private:
    struct Stream;

    bool pump();
    bool drain();
    bool drain(Stream *stream);
    void passOn(Stream *stream, const QByteArray &bytes);
    bool receive();
    void handleMessage();
    void write(const QByteArray &text);
    void sayLost(Stream *stream);
    size_t indexOf(const Stream *stream) const;

    std::vector<std::unique_ptr<Stream>> m_streams; // one, if standard output and error are the same file
    int m_channel = -1;
    int m_boxChannel = -1;
    std::unique_ptr<QSocketNotifier> m_channelNotifier;
    QByteArray m_message; // received and not handled yet
    QTimer m_retry;       // of an output that was full
    LastLines m_lastLines;
    QByteArray m_page;
    qulonglong m_memory = 0;
};
