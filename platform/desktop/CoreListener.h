// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "TrackList.h"

#include <memory>
#include <string>

namespace Desk {

/// What a player core reports, in the words of a player. All of it is called on the player's thread.
class CoreListener
{
public:
    virtual ~CoreListener() = default;

    /// An address is an entry of the core's list now, under this number.
    virtual void entryAdded(long long entry) = 0;
    /// An address is refused.
    virtual void entryRefused(const std::string &reason) = 0;
    virtual void entryStarted(long long entry) = 0;
    /// The entry was a list itself: count entries, numbered from first, come in its place.
    virtual void entryReplaced(long long entry, long long first, int count) = 0;
    virtual void entryFailed(long long entry, const std::string &reason) = 0;
    /// It has ended; isWhole tells whether at its own end.
    virtual void entryEnded(long long entry, bool isWhole) = 0;

    /// The stream is open; nothing of it is played before this returns. seconds: its duration, 0 when not known.
    virtual void streamPrepared(double seconds) = 0;
    /// The stream is open and all its tracks are known.
    virtual void streamOpened() = 0;
    /// Pictures and sound run, at the start or after a seek.
    virtual void playbackRestarted() = 0;
    /// An order to seek, by its number, has reached the core. What it begins next is this seek or a newer one.
    virtual void seekTaken(unsigned seek) = 0;
    virtual void seekRefused(unsigned seek) = 0;
    virtual void seekBegun() = 0;
    /// What the core says on its way to a failure.
    virtual void complained(const std::string &text) = 0;

    virtual void positionChanged(long long milliseconds) = 0;
    virtual void durationChanged(double seconds) = 0;
    /// By which demuxer it is read, as FFmpeg names it: "mpegts", "hls".
    virtual void formatChanged(const std::string &name) = 0;
    /// How many bytes it has, 0 when nobody knows.
    virtual void sizeChanged(long long bytes) = 0;
    /// The byte that playing has come to; told when CoreEvents::askForByte() was called.
    virtual void byteChanged(long long byte) = 0;
    virtual void viaNetworkChanged(bool isViaNetwork) = 0;
    /// What has been read of it and is still to be played.
    virtual void bufferedChanged(double seconds) = 0;
    virtual void seekableChanged(bool isSeekable) = 0;
    /// Within what is buffered, as live streams are.
    virtual void partlySeekableChanged(bool isPartlySeekable) = 0;
    virtual void bufferingChanged(bool isBuffering) = 0;
    /// Whether pictures and sound move on.
    virtual void runningChanged(bool isRunning) = 0;
    virtual void frameRateChanged(double framesPerSecond) = 0;
    virtual void pictureWidthChanged(int pixels) = 0;
    virtual void pictureHeightChanged(int pixels) = 0;
    virtual void tracksChanged(std::shared_ptr<const TrackList> tracks) = 0;
};

} // namespace Desk
