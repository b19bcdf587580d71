// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "ScriptSession.h"
#include "tests/platform/RecordingPlatform.h"

#include <QObject>
#include <QVector>

#include <initializer_list>
#include <memory>

/// The result of a script that the engine refuses before any method hears of it, however it words that.
constexpr char refused[] = "throws ";

/// What a portal's author would check by hand of a script that uses one member of a script object.
struct ScriptRow
{
    const char *script;
    const char *trace; ///< the trace lines, which are there with tracing on; one a line
    const char *calls; ///< to the platform, one a line
    /// Of the platform's function that is named as the method, or else of the first one called.
    RecordingPlatform::Answer answer;
    QByteArray result; ///< as JSON, or refused; null where it is the PC's own

    const char *name = "";    ///< what the row is about, where its script alone does not say that
    const char *console = ""; ///< what appears on standard output
    const char *message = ""; ///< a part of a debug message
    const char *warning = ""; ///< a part of a warning

    bool isNamed(std::initializer_list<const char *> names) const;
    QByteArray member() const;
    QByteArray firstFunction() const;
    QByteArray function() const;
};

/// A test of a script object by a table of rows, with tracing off and on: what each traces, calls and gives the page,
/// and that the table has all members that the object's meta-object has.
class ScriptTable : public QObject
{
    Q_OBJECT

protected:
    /// passesThrough says of which rows the result is the platform's answer, whatever that is.
    ScriptTable(const QByteArray &object, const QVector<ScriptRow> &rows, bool (*passesThrough)(const ScriptRow &row));

    ScriptSession &session() { return *m_session; }

protected slots:
    void initTestCase_data();
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

private slots:
    void scripts_data();
    void scripts();
    void numbersOfThePlatformReachThePageUnchanged_data();
    void numbersOfThePlatformReachThePageUnchanged();
    void everyMemberHasARow();

private:
    const QByteArray m_object;
    const QVector<ScriptRow> m_rows;
    bool (*const m_passesThrough)(const ScriptRow &row);
    std::unique_ptr<ScriptSession> m_session;
};
