// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Child.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>

#include <csignal>
#include <unistd.h>

void Child::GroupLeader::setupChildProcess()
{
    setpgid(0, 0);
}

Child::Child(const QString &program, const QStringList &arguments)
{
    m_process.start(program.contains('/') ? program : QCoreApplication::applicationDirPath() + '/' + program,
                    arguments);
}

Child::~Child()
{
    if (isRunning())
        kill(-pid_t(id()), SIGKILL);
    m_process.waitForFinished();
}

QVector<double> Child::values()
{
    // A loop, because this program may be the child's web server.
    QEventLoop loop;
    QObject::connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop, &QEventLoop::quit);
    QObject::connect(&m_process, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    if (isRunning())
        loop.exec();

    const QJsonArray numbers = QJsonDocument::fromJson(m_process.readAllStandardOutput().split('\n').first()).array();
    if (m_process.exitStatus() != QProcess::NormalExit || m_process.exitCode() != 0 || numbers.isEmpty())
        fail("gave no figures");
    QVector<double> values;
    for (const QJsonValue &number : numbers)
        values += number.toDouble();
    return values;
}

void Child::fail(const QString &message)
{
    const QString command = m_process.program() + ' ' + m_process.arguments().join(' ');
    qFatal("%s\n%s: %s", m_process.readAllStandardError().constData(), qPrintable(command), qPrintable(message));
}
