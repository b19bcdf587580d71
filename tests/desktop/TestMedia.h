// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QColor>
#include <QList>
#include <QString>
#include <QStringList>

/// Media made by FFmpeg for one test run. Each function answers whether the file could be made.
namespace TestMedia {

/// The PIDs of the transport streams.
constexpr int videoPid = 512;
constexpr int russianPid = 650;
constexpr int englishPid = 651;

/// Runs the ffmpeg program.
bool ffmpeg(const QStringList &arguments);

/// Bars with a counter and two languages of sound, as a transport stream, of this many seconds.
bool makeBars(const QString &file, int seconds, const QString &size = "640x360");

/// The PIDs of those bars' streams.
inline QList<int> barsPids()
{
    return {videoPid, russianPid, englishPid};
}

/// A picture of one colour, of this size, and a tone.
bool makeColor(const QString &file, const QColor &color, const QString &size, int seconds);

/// A dark picture with two languages of sound and two subtitle tracks, as Matroska.
bool makeFilm(const QString &file, int seconds);

/// A subtitle file that says something for an hour.
bool makeSubtitles(const QString &file, const QString &text);

} // namespace TestMedia
