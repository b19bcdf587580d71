// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RemoteControl.h"

#include "Key.h"

#include <QGridLayout>
#include <QPushButton>

namespace {

struct Button
{
    int row;
    int column;
    const char *label;
    const char *key; ///< its name of Qt
    const char *background;
};

const Button buttons[] = {
    {0, 0, "Exit", "F1", nullptr},
    {0, 2, "Menu", "Menu", nullptr},
    {1, 1, "▲", "Up", nullptr},
    {2, 0, "◀", "Left", nullptr},
    {2, 1, "OK", "Return", nullptr},
    {2, 2, "▶", "Right", nullptr},
    {3, 0, "Back", "Escape", nullptr},
    {3, 1, "▼", "Down", nullptr},
    {3, 2, "Mute", "VolumeMute", nullptr},
    {4, 0, "Vol −", "VolumeDown", nullptr},
    {4, 2, "Vol +", "VolumeUp", nullptr},
    {5, 0, "1", "1", nullptr},
    {5, 1, "2", "2", nullptr},
    {5, 2, "3", "3", nullptr},
    {6, 0, "4", "4", nullptr},
    {6, 1, "5", "5", nullptr},
    {6, 2, "6", "6", nullptr},
    {7, 0, "7", "7", nullptr},
    {7, 1, "8", "8", nullptr},
    {7, 2, "9", "9", nullptr},
    {8, 1, "0", "0", nullptr},
    {9, 0, "Red", "F2", "#c62828"},
    {9, 1, "Green", "F3", "#2e7d32"},
    {9, 2, "Yellow", "F4", "#f9a825"},
    {10, 1, "Blue", "F5", "#1565c0"},
};

} // namespace

RemoteControl::RemoteControl()
    : QWidget(nullptr, Qt::Tool | Qt::WindowDoesNotAcceptFocus)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle("Remote control");
    auto *layout = new QGridLayout(this);
    for (const Button &button : buttons) {
        const std::optional<Key> key = Key::named(button.key);
        auto *widget = new QPushButton(QString::fromUtf8(button.label));
        widget->setFocusPolicy(Qt::NoFocus);
        widget->setToolTip(QString("Key %1").arg(button.key));
        if (button.background)
            widget->setStyleSheet(QString("background: %1; color: white").arg(button.background));
        connect(widget, &QPushButton::clicked, this, [this, key] { emit pressed(*key); });
        layout->addWidget(widget, button.row, button.column);
    }
}
