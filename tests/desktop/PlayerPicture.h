// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/desktop/DeskBox.h"

#include <QColor>
#include <QImage>

/// What a player's window shows at the moment; a null image while there is nothing.
inline QImage playerPicture(KVR_ID id)
{
    for (const DeskBox::PlayerWindow &window : DeskBox::playerWindows()) {
        if (window.id == id && window.frame) {
            const DeskBox::Frame &frame = *window.frame;
            return QImage(frame.pixels.data(), frame.width, frame.height, frame.stride, QImage::Format_RGB32).copy();
        }
    }
    return {};
}

/// Whether a colour that has been through a video codec is still this one.
inline bool isAbout(const QColor &color, const QColor &expected)
{
    constexpr int tolerance = 12;
    return qAbs(color.red() - expected.red()) <= tolerance && qAbs(color.green() - expected.green()) <= tolerance
        && qAbs(color.blue() - expected.blue()) <= tolerance;
}

/// The number of pixels that are nearly white, as subtitles are.
inline int whitePixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) > 220)
                ++count;
        }
    }
    return count;
}
