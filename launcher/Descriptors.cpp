// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Descriptors.h"

#include <QList>

#include <fcntl.h>

QByteArray Descriptors::list(const QVector<int> &descriptors)
{
    QByteArray text;
    for (const int descriptor : descriptors)
        text += QByteArray::number(descriptor) + ' ';
    return text.trimmed();
}

void Descriptors::setInherited(const QVector<int> &descriptors, bool inherited)
{
    for (const int descriptor : descriptors)
        fcntl(descriptor, F_SETFD, inherited ? 0 : FD_CLOEXEC);
}

QVector<int> Descriptors::given()
{
    QVector<int> descriptors;
    const QList<QByteArray> numbers = qgetenv(variable).split(' ');
    for (const QByteArray &number : numbers) {
        bool isNumber = false;
        const int descriptor = number.toInt(&isNumber);
        if (isNumber)
            descriptors << descriptor;
    }
    return descriptors;
}
