// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>

#include <memory>

/// An output of this process that may be a pipe which nobody reads. Takes bytes at once and writes them from a thread
/// of its own, which lasts until they are written, longer than this object and without holding up the process's end.
class Outlet
{
public:
    /// The descriptor stays the caller's.
    explicit Outlet(int descriptor);
    ~Outlet();
    Outlet(const Outlet &) = delete;
    Outlet &operator=(const Outlet &) = delete;

    bool isTerminal() const { return m_isTerminal; }
    void write(const QByteArray &bytes);
    /// Whether so much waits to be written that no more should come.
    bool isFull() const;
    /// Whether nothing has been taken from it for this long, in milliseconds, although something waits.
    bool isStuck(int time) const;
    /// Waits until all is written, or until it is stuck for this long.
    void finish(int time) const;

private:
    struct State;

    const bool m_isTerminal;
    std::shared_ptr<State> m_state;
};
