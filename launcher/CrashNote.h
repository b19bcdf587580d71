// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

class Channel;

/// While it lives, a crash of this process is told over the channel with the memory that the process had, and then
/// takes its course. One object a process.
class CrashNote
{
public:
    /// The channel must outlive it.
    explicit CrashNote(const Channel *channel);
    ~CrashNote();
    CrashNote(const CrashNote &) = delete;
    CrashNote &operator=(const CrashNote &) = delete;
};
