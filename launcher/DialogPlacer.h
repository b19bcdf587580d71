// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

class QDialog;

/// Puts the plugin's dialogs in the middle of their parents and gives them the keys, as the window system of a desktop
/// does with windows of its own. Filters the application's events.
class DialogPlacer : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject *object, QEvent *event) override;

private:
    static void place(QDialog *dialog);
    static void focusFirstChild(QDialog *dialog);
};
