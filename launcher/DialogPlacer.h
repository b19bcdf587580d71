// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDialog>
#include <QObject>
#include <QPointer>

/// Puts the plugin's dialogs in the middle of their parents and gives them the keys, and back, as the window system of
/// a desktop does with windows of its own. Filters the application's events.
class DialogPlacer : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject *object, QEvent *event) override;

private slots:
    void place();
    void returnKeys();

private:
    static void focusFirstChild(QDialog *dialog);

    QPointer<QDialog> m_dialog; // the latest
    QPointer<QWidget> m_parent; // of the dialog closed last
};
