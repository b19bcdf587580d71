// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

/// Event filter for the objects that a page sees: their inherited slot deleteLater, which a page can call like any
/// other, has no effect on them. Their owners use delete.
class DeleteLaterFilter : public QObject
{
public:
    explicit DeleteLaterFilter(QObject *parent);

    bool eventFilter(QObject *watched, QEvent *event) override;
};
