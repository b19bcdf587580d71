// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/PageLog.h"

#include "common/other/tools.h"

#include <QTime>

#include <iostream>

namespace {

const char logPath[] = "/tmp/jsbrowser.log";
const qint64 sizeLimit = 1024 * 1024; // bytes

} // namespace

PageLog::PageLog(QObject *parent)
    : PlainFile(QLatin1String(logPath), parent)
{
    // Without a buffer, what a full disk does not take is dropped instead of being kept in memory.
    open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

void PageLog::append(const QString &text)
{
    if (!isOpen())
        return;
    if (size() > sizeLimit)
        resize(0);
    write(QTime::currentTime().toString(QLatin1String("hh:mm:ss ")).toUtf8() + text.toUtf8() + '\n');
}

void PageLog::print(const QString &text)
{
    std::cout << "debug" << text << std::endl;
}
