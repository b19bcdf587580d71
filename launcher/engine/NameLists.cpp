// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "NameLists.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

QByteArray NameLists::asJson(const QString &resource)
{
    QFile file(resource);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The resource %s is missing", qPrintable(resource));
    QJsonObject lists;
    QString key;
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    for (QString line : lines) {
        if (line.trimmed().isEmpty() || line.startsWith('#'))
            continue;
        if (!line.startsWith(' ')) {
            key = line.section(": ", 0, 0).chopped(line.endsWith(':') ? 1 : 0);
            line = line.section(": ", 1);
        }
        lists[key] = QJsonArray::fromStringList(lists[key].toVariant().toStringList()
                                                + line.simplified().split(' ', Qt::SkipEmptyParts));
    }
    return QJsonDocument(lists).toJson(QJsonDocument::Compact);
}
