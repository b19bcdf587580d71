// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "CoreListener.h"
#include "MpvCore.h"

#include <cstdint>

namespace Desk {

/// Where libmpv's events become calls: no other file reads them.
namespace CoreEvents {

constexpr int seekShift = 32;

/// Has the core report what changes while it plays, under this tag, the present values first. Once for each entry, so
/// that every value is reported even if it is the same as for the one before.
void observe(MpvCore &core, std::uint64_t tag);

/// The same of the tracks. Not before the stream is open: those of external files come last.
void observeTracks(MpvCore &core, std::uint64_t tag);

/// Has the core report how far into its bytes playing has come, which it does not do by itself.
void askForByte(MpvCore &core, std::uint64_t tag);

/// The tag for a seek, so that its reply is told by its number, which is positive.
constexpr std::uint64_t seekTag(unsigned tag, unsigned seek)
{
    return static_cast<std::uint64_t>(seek) << seekShift | tag;
}

/// Tells the listener of an event. What belongs to an order or observation with another tag is left out.
void report(const mpv_event &event, MpvCore &core, std::uint64_t tag, CoreListener &listener);

} // namespace CoreEvents

} // namespace Desk
