// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/DeleteGuard.h"

#include <QEvent>

DeleteGuard::DeleteGuard(QObject *parent)
    : QObject(parent)
{
}

bool DeleteGuard::eventFilter(QObject *, QEvent *event)
{
    return event->type() == QEvent::DeferredDelete;
}
