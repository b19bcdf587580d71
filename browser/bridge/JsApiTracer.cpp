// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/bridge/JsApiTracer.h"

#include <QDate>
#include <QDebug>
#include <QIODevice>
#include <QTime>

int JsApiTracer::debug_level = -1;

void JsApiTracer::TRACE(const QString &text)
{
    if (!isEnabled())
        return;
    qDebug() << "[" << QDate::currentDate().toString(Qt::TextDate) << QTime::currentTime().toString(Qt::TextDate) << "]"
             << text;
}

void JsApiTracer::readLevel(QIODevice &file)
{
    QByteArray line = file.readLine();
    if (line.endsWith('\n'))
        line.chop(1);
    bool ok;
    const int number = line.toInt(&ok);
    if (!ok) {
        qDebug() << "ERROR! Wrong debug level: " << QString::fromLocal8Bit(line);
        return;
    }
    qDebug() << "Set level to " << number;
    debug_level = number;
}
