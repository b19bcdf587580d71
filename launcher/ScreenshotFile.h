// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

class QImage;

/// The file of the screenshot, which the process inside the box cannot reach: it is opened outside, before the box is
/// closed, and written inside by its descriptor.
class ScreenshotFile
{
public:
    ScreenshotFile() = default;
    ~ScreenshotFile();
    ScreenshotFile(const ScreenshotFile &) = delete;
    ScreenshotFile &operator=(const ScreenshotFile &) = delete;

    /// Opens the file, and creates it if it is not there. What it holds stays until a picture is saved. A file that was
    /// created for nothing is removed at the end. False, and the reason in *error, if it cannot be written.
    bool open(const QString &path, QString *error);
    /// -1 if none is open.
    int descriptor() const { return m_descriptor; }

    /// Replaces what an open file holds by the picture, as PNG. False if that fails.
    static bool save(const QImage &picture, int descriptor);

private:
    QByteArray m_path;
    int m_descriptor = -1;
    bool m_isCreated = false;
};
