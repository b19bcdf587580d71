// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>

#include <mutex>

/// What the process inside a box has to tell the one outside, which pages cannot forge: a socket that the process
/// outside has made and whose messages BoxOutput reads. Pages and their programs cannot open it, even by /proc.
class Channel
{
public:
    /// The first byte of a message; the rest is text.
    enum Kind : char {
        Line = 'l',    ///< to be shown; is answered by one byte when what was written before is on its way
        LineNow = 'n', ///< the same without an answer
        Page = 'p',    ///< the address of the page that is shown from now on
        Memory = 'm'   ///< how many bytes the process had as it crashed
    };

    /// The end inside. From now on report() goes through it; without a descriptor
    /// that is open nothing changes.
    explicit Channel(int descriptor);
    ~Channel();
    Channel(const Channel &) = delete;
    Channel &operator=(const Channel &) = delete;

    void tellPage(const QByteArray &address);
    /// For a handler of signals.
    void tellMemory(const char *text, size_t size) const;

private:
    void send(Kind kind, const QByteArray &text);
    void sendNow(const QByteArray &text) const;

    const int m_descriptor;
    std::mutex m_mutex; // one message and its answer at a time
};
