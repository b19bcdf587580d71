// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QWidget>

struct Key;

/// A remote control in a window of its own, which never takes the keyboard from the screen.
class RemoteControl : public QWidget
{
    Q_OBJECT

public:
    RemoteControl();

signals:
    void pressed(const Key &key);
};
