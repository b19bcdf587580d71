// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/DeleteLaterFilter.h"

#include <QEvent>

DeleteLaterFilter::DeleteLaterFilter(QObject *parent)
    : QObject(parent)
{
}

bool DeleteLaterFilter::eventFilter(QObject *, QEvent *event)
{
    return event->type() == QEvent::DeferredDelete;
}
