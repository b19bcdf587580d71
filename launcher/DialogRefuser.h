// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

/// Closes the dialogs of the toolkit that a page can open and a remote control cannot leave, those for files and for
/// colours, before they are seen. A box has nothing of the kind. Filters the application's events.
class DialogRefuser : public QObject
{
    Q_OBJECT

public:
    DialogRefuser();

    bool eventFilter(QObject *object, QEvent *event) override;
};
