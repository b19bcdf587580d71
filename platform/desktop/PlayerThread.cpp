// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PlayerThread.h"
#include "Log.h"
#include "LooseThreads.h"

#include <exception>
#include <string>
#include <utility>

using namespace Desk;

PlayerThread::PlayerThread(std::shared_ptr<PlayerModel> model, std::shared_ptr<PlayerWindow> window)
    : m_model(std::move(model))
    , m_window(std::move(window))
{
}

void PlayerThread::start()
{
    // The end of a player may take as long as its stream takes to let go.
    LooseThreads::run([self = shared_from_this()] { self->run(); });
}

void PlayerThread::post(Task task)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_tasks.push_back(std::move(task));
    if (m_core)
        m_core->wakeUp();
}

void PlayerThread::close()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_closing = true;
    if (m_core)
        m_core->wakeUp();
}

bool PlayerThread::hasFailed()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_failed;
}

PlayerThread::Wakeable::Wakeable(PlayerThread &thread, MpvCore &core)
    : m_thread(thread)
{
    const std::lock_guard<std::mutex> lock(m_thread.m_mutex);
    m_thread.m_core = &core;
}

PlayerThread::Wakeable::~Wakeable()
{
    const std::lock_guard<std::mutex> lock(m_thread.m_mutex);
    m_thread.m_core = nullptr;
}

bool PlayerThread::isClosing()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_closing;
}

bool PlayerThread::takeTasks(std::vector<Task> &tasks)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    tasks.swap(m_tasks);
    return !m_closing;
}

void PlayerThread::run()
{
    try {
        Playback playback(*m_model, *m_window);
        const Wakeable wakeable(*this, playback.core());
        for (std::vector<Task> tasks; takeTasks(tasks); tasks.clear()) {
            for (const Task &task : tasks) {
                while (playback.core().isBusy() && !isClosing())
                    playback.work();
                task(playback);
            }
            playback.work();
        }
    } catch (const std::exception &exception) {
        log("player " + std::to_string(m_model->id()) + ": " + exception.what());
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_failed = true;
        }
        m_model->change([](PlayerStatus &status) {
            status.beginSession(KVR_PLAYER_ERROR);
            return KVR_OK;
        });
    }
}
