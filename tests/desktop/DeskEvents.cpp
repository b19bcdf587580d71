// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskEvents.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QSemaphore>

#include <fcntl.h>
#include <mutex>
#include <unistd.h>

namespace {

std::mutex mutex;
Q_GLOBAL_STATIC(QList<DeskEvents::Event>, events)
QElapsedTimer timer;
void (*reaction)(int type) = nullptr;

template <int Type>
int handle(int argument)
{
    void (*react)(int) = nullptr;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        events->append({Type, argument, timer.elapsed(), std::this_thread::get_id()});
        react = reaction;
    }
    if (react)
        react(Type);
    return 0;
}

struct Handler
{
    int type;
    KVR_EventHandler function;
};

template <int Type>
constexpr Handler handler = {Type, handle<Type>};

constexpr Handler playerHandlers[] = {
    handler<KVR_EVENT_STATE>,     handler<KVR_EVENT_METADATA>,     handler<KVR_EVENT_POSITION>,
    handler<KVR_EVENT_AUDIO>,     handler<KVR_EVENT_VIDEO>,        handler<KVR_EVENT_SUBTITLES>,
    handler<KVR_EVENT_VOLUME>,    handler<KVR_EVENT_ZOOM>,         handler<KVR_EVENT_MUTE>,
    handler<KVR_EVENT_MULTICAST>, handler<KVR_EVENT_TELETEXT_PID>, handler<KVR_EVENT_TELETEXT_PAGE>,
};

constexpr Handler boxHandlers[] = {
    handler<KVR_EVENT_OUTPUT_PORTS>, handler<KVR_EVENT_SYNC_DONE>, handler<KVR_EVENT_RECORDS>,
    handler<KVR_EVENT_OUTPUT_STATE>, handler<KVR_EVENT_HDMI>,
};

template <typename Call>
void forEachHandler(KVR_ID id, Call call)
{
    if (id == KVR_BOX) {
        for (const Handler &each : boxHandlers)
            call(each);
    } else {
        for (const Handler &each : playerHandlers)
            call(each);
    }
}

Q_GLOBAL_STATIC(QSemaphore, arrived)

// All events come in order: with a new one come those before it.
void awaitThoseSent()
{
    const KVR_EventHandler previous = KVR_GetEventHandler(KVR_BOX, KVR_EVENT_SYNC_DONE);
    KVR_RegisterEventHandler(KVR_BOX, KVR_EVENT_SYNC_DONE, [](int) {
        arrived->release();
        return 0;
    });
    if (KVR_SyncBootParams() == KVR_OK)
        arrived->acquire();
    if (previous)
        KVR_RegisterEventHandler(KVR_BOX, KVR_EVENT_SYNC_DONE, previous);
    else
        KVR_DeleteEventHandler(KVR_BOX, KVR_EVENT_SYNC_DONE);
}

} // namespace

DeskEvents::DeskEvents(KVR_ID id)
    : m_id(id)
{
    clear();
    forEachHandler(id, [id](const Handler &each) { KVR_RegisterEventHandler(id, each.type, each.function); });
}

DeskEvents::~DeskEvents()
{
    forEachHandler(m_id, [this](const Handler &each) { KVR_DeleteEventHandler(m_id, each.type); });
    setReaction(nullptr);
}

QList<DeskEvents::Event> DeskEvents::all()
{
    const std::lock_guard<std::mutex> lock(mutex);
    return *events;
}

QList<DeskEvents::Event> DeskEvents::of(int type)
{
    QList<Event> result;
    const QList<Event> everything = all();
    for (const Event &event : everything) {
        if (event.type == type)
            result.append(event);
    }
    return result;
}

void DeskEvents::clear()
{
    awaitThoseSent();
    const std::lock_guard<std::mutex> lock(mutex);
    events->clear();
    timer.start();
}

void DeskEvents::setReaction(void (*react)(int type))
{
    const std::lock_guard<std::mutex> lock(mutex);
    reaction = react;
}

ErrorOutput::ErrorOutput()
    : m_file(::open("/tmp", O_TMPFILE | O_RDWR | O_APPEND | O_CLOEXEC, 0600))
    , m_previous(::dup(STDERR_FILENO))
{
    ::dup2(m_file, STDERR_FILENO);
}

ErrorOutput::~ErrorOutput()
{
    ::dup2(m_previous, STDERR_FILENO);
    ::close(m_previous);
    ::close(m_file);
}

QString ErrorOutput::text() const
{
    QByteArray text(static_cast<int>(::lseek(m_file, 0, SEEK_END)), '\0');
    const ssize_t size = ::pread(m_file, text.data(), static_cast<std::size_t>(text.size()), 0);
    return QString::fromUtf8(text.left(static_cast<int>(size)));
}
