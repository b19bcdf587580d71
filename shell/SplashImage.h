// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QTimer>

class QLabel;
class QPixmap;
class QWidget;

/// The image over the window until a first page is there, if that takes a while.
class SplashImage
{
public:
    explicit SplashImage(QWidget *window);

    /// Calls the window's slot when it is time to show the image.
    void announce(const char *slot);
    void show(const QPixmap &image);
    /// There is a page; also when the image has not been shown yet.
    void end();

private:
    QWidget *window;
    QTimer timer;
    QLabel *label; ///< null when it is not shown
};
