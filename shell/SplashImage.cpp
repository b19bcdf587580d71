// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "shell/SplashImage.h"

#include "common/other/qtcompat.h"

#include <QLabel>

namespace {

const int delay = 500; // ms

} // namespace

SplashImage::SplashImage(QWidget *window)
    : window(window)
    , label(nullptr)
{
}

void SplashImage::announce(const char *slot)
{
    timer.setInterval(delay);
    timer.setSingleShot(true);
    QtCompat::makePrecise(timer);
    QObject::connect(&timer, SIGNAL(timeout()), window, slot);
    timer.start();
}

void SplashImage::show(const QPixmap &image)
{
    label = new QLabel(window);
    label->setPixmap(image);
    label->show();
}

void SplashImage::end()
{
    timer.stop();
    if (label) {
        label->deleteLater();
        label = nullptr;
    }
}
