// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScreenWindow.h"

#include "Key.h"
#include "Screen.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

// Exported by Qt for programs that make key events, as its own test library.
QT_BEGIN_NAMESPACE
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow *window, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers,
                                    const QString &text = {}, bool isRepeated = false, ushort count = 1);
QT_END_NAMESPACE

namespace {

// Two thirds of the desktop leave room for an editor.
QSize usualSize()
{
    const QSize room = QGuiApplication::primaryScreen()->availableSize() * 2 / 3;
    return QSize(Screen::screenWidth, Screen::screenHeight).scaled(room, Qt::KeepAspectRatio);
}

} // namespace

ScreenWindow::ScreenWindow(Screen *screen, const QSize &size)
    : QGraphicsView(screen)
{
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setBackgroundBrush(Qt::black);
    setRenderHint(QPainter::SmoothPixmapTransform);
    resize(size.isEmpty() ? usualSize() : size);
    setFocus();
}

void ScreenWindow::press(const Key &key)
{
    qt_handleKeyEvent(windowHandle(), QEvent::KeyPress, key.code, key.modifiers, key.text);
    qt_handleKeyEvent(windowHandle(), QEvent::KeyRelease, key.code, key.modifiers, key.text);
}

void ScreenWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // it goes with the rest
    emit closed();
}

void ScreenWindow::resizeEvent(QResizeEvent *event)
{
    QGraphicsView::resizeEvent(event);
    // fitInView would leave a margin, and so scale a picture that fits.
    const qreal scale = qMin(width() / sceneRect().width(), height() / sceneRect().height());
    setTransform(QTransform::fromScale(scale, scale));
}
