// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptSession.h"

#include "tests/platform/RecordingPlatform.h"

#include <QDebug>
#include <QFile>
#include <QRegularExpression>
#include <QtTest>
#include <algorithm>

namespace {

const char *const levelFile = "/etc/stbjsapi_debug";

// Captures the text if the line is a trace line.
QRegularExpressionMatch traceIn(const QString &line)
{
    static const QRegularExpression traceLine(
        R"(^\[ "[A-Z][a-z]{2} [A-Z][a-z]{2} \d{1,2} \d{4}" "\d\d:\d\d:\d\d" \] (".*")$)");
    return traceLine.match(line);
}

} // namespace

QString ScriptSession::quoted(const QString &text)
{
    QString result;
    QDebug(&result).nospace() << text;
    return result;
}

QString ScriptSession::quotedLines(const QString &texts)
{
    QStringList lines = texts.split('\n', Qt::SkipEmptyParts);
    std::transform(lines.begin(), lines.end(), lines.begin(), quoted);
    return lines.join('\n');
}

bool ScriptSession::start()
{
    HostedPlugin::writeManifest(PluginManifest());
    QFile::remove(levelFile);
    if (m_plugin.start() && m_plugin.loadHtml("<!DOCTYPE html><title>Empty</title>")) {
        takeOutcome();
        return true;
    }
    qWarning("The plugin does not start, or shows no page");
    return false;
}

bool ScriptSession::setTracing(bool on)
{
    if (on == m_isTraced)
        return true;
    m_isTraced = on;
    const char *const level = on ? "1" : "0";
    QFile file(levelFile);
    m_log.clear();
    if (!file.open(QIODevice::WriteOnly) || file.write(level) < 1)
        return false;
    file.close();
    return QTest::qWaitFor([&] { return m_log.contains(QString("Set level to  ") + level); });
}

ScriptSession::Outcome ScriptSession::run(const QString &script)
{
    takeOutcome();
    const QString result = m_plugin.evaluateToJson(script);
    Outcome outcome = takeOutcome();
    outcome.result = result;
    return outcome;
}

bool ScriptSession::hasTraces() const
{
    const QStringList lines = m_log.debugLines();
    return std::any_of(lines.begin(), lines.end(), [](const QString &line) { return traceIn(line).hasMatch(); });
}

ScriptSession::Outcome ScriptSession::takeOutcome()
{
    Outcome outcome;
    QStringList traces;
    const QStringList lines = m_log.debugLines();
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = traceIn(line);
        (match.hasMatch() ? traces : outcome.messages) += match.hasMatch() ? match.captured(1) : line;
    }
    outcome.traces = traces.join('\n');
    outcome.warnings = m_log.warnings();
    outcome.calls = RecordingPlatform::takeCalls().join('\n');
    m_log.clear();
    return outcome;
}
