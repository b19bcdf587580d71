// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Program.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTest>

namespace {

const int longestRun = 60000; // ms

} // namespace

Program::Program(const QString &path)
{
    setProgram(inBuildTree(path));
    setProcessEnvironment(QProcessEnvironment::systemEnvironment());
    connect(this, &QProcess::readyReadStandardOutput, this, [this] { m_output += readAllStandardOutput(); });
    connect(this, &QProcess::readyReadStandardError, this, [this] { m_errors += readAllStandardError(); });
}

Program::~Program()
{
    disconnect();
    kill();
    waitForFinished();
}

int Program::finish()
{
    // With an event loop, since a test may be the program's web server at the same time.
    if (!QTest::qWaitFor([this] { return state() == NotRunning; }, longestRun))
        return -1;
    return exitStatus() == NormalExit ? exitCode() : -2;
}

int Program::run(const QStringList &arguments)
{
    m_output.clear();
    m_errors.clear();
    setArguments(arguments);
    start();
    return waitForStarted() ? finish() : -3;
}

QByteArray Program::output()
{
    return m_output += readAllStandardOutput();
}

QByteArray Program::errors()
{
    return m_errors += readAllStandardError();
}

void Program::setVariable(const QString &name, const QString &value)
{
    QProcessEnvironment environment = processEnvironment();
    if (value.isNull())
        environment.remove(name);
    else
        environment.insert(name, value);
    setProcessEnvironment(environment);
}

QString Program::inBuildTree(const QString &path)
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../" + path);
}

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString &fileName, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(fileName).absolutePath());
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}
