// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QList>
#include <QString>

/// What FFmpeg finds in the file of a recording.
struct RecordedFile
{
    explicit RecordedFile(const QString &name);

    QString format;         ///< empty if it is no media file
    QList<int> pids;        ///< of its streams
    int pictures = 0;       ///< packets of the video stream
    double seconds = 0;     ///< from its first to its last picture
    double longestStep = 0; ///< seconds between two pictures
};
