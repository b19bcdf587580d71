// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/JsApiTracer.h"

#include <QDate>
#include <QDebug>
#include <QTime>

int JsApiTracer::debug_level = -1;

void JsApiTracer::TRACE(const QString &text)
{
    if (!isEnabled())
        return;
    qDebug() << "[" << QDate::currentDate().toString(Qt::TextDate) << QTime::currentTime().toString(Qt::TextDate) << "]"
             << text;
}
