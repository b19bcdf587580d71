// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "TrackList.h"

#include <cstdint>
#include <mpv/client.h>
#include <mpv/stream_cb.h>
#include <string>
#include <utility>
#include <vector>

namespace Desk {

/// One player core of libmpv. Its orders are queued and never wait. All but wakeUp() belongs to one thread.
class MpvCore
{
public:
    using Options = std::vector<std::pair<std::string, std::string>>;

    /// Throws std::runtime_error when libmpv cannot start.
    MpvCore();
    MpvCore(const MpvCore &) = delete;
    MpvCore &operator=(const MpvCore &) = delete;

    /// Ends playback. May take as long as the stream takes to let go.
    ~MpvCore();

    mpv_handle *handle() const { return m_handle; }

    void set(const char *property, const std::string &value);
    void set(const char *property, const char *value) { set(property, std::string(value)); }
    void set(const char *property, bool value);
    void set(const char *property, double value);
    /// The reply, MPV_EVENT_COMMAND_REPLY, has this tag.
    void command(const std::vector<std::string> &words, std::uint64_t tag = 0);

    /// number: Track::number of a track of this kind, 0 for none.
    void selectTrack(TrackKind kind, int number);
    void showTeletext(bool visible, int trackNumber, int page);
    void setDisplayMode(int mode);

    /// A picture stretched to its window and enlarged, which the core does only for pictures that keep their shape: by
    /// these factors it gets the window's. Both 0 for a picture that fills its window by itself.
    void setStretch(double horizontal, double vertical);

    /// Has addresses of this scheme opened by a function, on a thread of the core's, with source as its first argument.
    /// Throws std::runtime_error when the core does not take it.
    void addScheme(const char *scheme, void *source, mpv_stream_cb_open_ro_fn open);

    /// Plays address with options of its own. The reply, MPV_EVENT_COMMAND_REPLY with this tag, tells the entry's
    /// number.
    void load(const std::string &address, const Options &options, std::uint64_t tag);

    /// Has changes of a property reported with this tag, the present value first.
    void observe(const char *property, mpv_format format, std::uint64_t tag);
    /// Has a property reported once with this tag, as a change is.
    void ask(const char *property, mpv_format format, std::uint64_t tag);
    void unobserve(std::uint64_t tag);

    /// True while so much is to be done that events are to be taken before more is ordered: libmpv refuses orders when
    /// 1,000 replies are due.
    bool isBusy() const { return m_repliesDue > 500; }

    /// Waits for the next event, at most for this many seconds. Valid until the next call. With MPV_EVENT_HOOK the core
    /// waits too: it has opened a stream and plays it from the next call on.
    const mpv_event *nextEvent(double timeout);

    /// Of the stream that is open, in seconds, 0 when not known: its duration, and the time of its clock that is the
    /// position 0. Only while the core waits for us.
    double duration() { return number("duration"); }
    double startTime() { return number("demuxer-start-time"); }

    /// Has a nextEvent() that waits return. Any thread.
    void wakeUp();

private:
    void setOption(const char *name, const std::string &value);
    double number(const char *property);
    void count(int result);

    mpv_handle *m_handle = nullptr;
    int m_repliesDue = 0;
    std::uint64_t m_hook = 0; // for which the core waits, 0 when it does not
};

} // namespace Desk
