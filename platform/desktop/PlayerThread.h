// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Playback.h"

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace Desk {

/// The thread on which a player's Playback lives. It holds on to the player's model and window until it has ended.
class PlayerThread : public std::enable_shared_from_this<PlayerThread>
{
public:
    using Task = std::function<void(Playback &)>;

    PlayerThread(std::shared_ptr<PlayerModel> model, std::shared_ptr<PlayerWindow> window);

    /// Starts the thread. Once, after the construction.
    void start();

    /// Has a task run on the thread. Never waits.
    void post(Task task);

    /// Has the thread end by itself, as soon as what it plays lets go. Never waits.
    void close();

    /// Whether the thread has ended because it could not go on. What is posted is then done by nobody.
    bool hasFailed();

private:
    // While it lives, what is posted wakes the core.
    class Wakeable
    {
    public:
        Wakeable(PlayerThread &thread, MpvCore &core);
        Wakeable(const Wakeable &) = delete;
        Wakeable &operator=(const Wakeable &) = delete;
        ~Wakeable();

    private:
        PlayerThread &m_thread;
    };

    void run();
    bool isClosing();
    bool takeTasks(std::vector<Task> &tasks);

    const std::shared_ptr<PlayerModel> m_model;
    const std::shared_ptr<PlayerWindow> m_window;
    std::mutex m_mutex;
    std::vector<Task> m_tasks;
    MpvCore *m_core = nullptr;
    bool m_closing = false;
    bool m_failed = false;
};

} // namespace Desk
