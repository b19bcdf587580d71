// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QList>

/// What FFmpeg's program cannot make of a transport stream: one with DVB subtitles and teletext, as broadcast.
namespace Broadcast {

constexpr int subtitlePid = 700;
constexpr int teletextPid = 701;

/// The subtitle is a white rectangle in the middle of the picture of this size.
constexpr int subtitleWidth = 200;
constexpr int subtitleHeight = 100;

/// Copies a transport stream and adds both. pages: the numbers of the teletext pages; each is full of as many letters
/// in a line as its number's last digit says tens, so that they can be told apart.
bool addSubtitlesAndTeletext(const QByteArray &from, const QByteArray &to, const QList<int> &pages);

} // namespace Broadcast
