// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QGraphicsView>

class Screen;
struct Key;

/// The desk box's window: shows the screen as large as it fits, and gives it the keys.
class ScreenWindow : public QGraphicsView
{
    Q_OBJECT

public:
    /// An empty size leaves it to the desktop's.
    ScreenWindow(Screen *screen, const QSize &size);

    /// Presses and releases a key, as if on a keyboard that types into this window.
    void press(const Key &key);

signals:
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
};
