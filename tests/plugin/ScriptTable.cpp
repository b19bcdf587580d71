// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptTable.h"

#include "ScriptMetaObject.h"
#include "StreamCapture.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

#include <algorithm>
#include <climits>
#include <iostream>

namespace {

// Whether that part is in one message and there is no other, or with no part that there is none.
bool isAll(const QByteArray &part, const QStringList &messages)
{
    return part.isEmpty() ? messages.isEmpty() : messages.size() == 1 && messages.first().contains(part);
}

} // namespace

bool ScriptRow::isNamed(std::initializer_list<const char *> names) const
{
    return std::find(names.begin(), names.end(), QByteArray(name)) != names.end();
}

QByteArray ScriptRow::member() const
{
    static const QRegularExpression use(R"(\.(\w+))");
    return use.match(script).captured(1).toUtf8();
}

QByteArray ScriptRow::firstFunction() const
{
    return QByteArray(calls).split('(').first();
}

QByteArray ScriptRow::function() const
{
    const QByteArray namesake = "KVR_" + member();
    return QByteArray(calls).contains(namesake + '(') ? namesake : firstFunction();
}

ScriptTable::ScriptTable(const QByteArray &object, const QVector<ScriptRow> &rows,
                         bool (*passesThrough)(const ScriptRow &row))
    : m_object(object)
    , m_rows(rows)
    , m_passesThrough(passesThrough)
{
}

void ScriptTable::initTestCase_data()
{
    QTest::addColumn<bool>("tracing");
    QTest::newRow("not traced") << false;
    QTest::newRow("traced") << true;
}

void ScriptTable::initTestCase()
{
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
}

void ScriptTable::init()
{
    QFETCH_GLOBAL(const bool, tracing);
    RecordingPlatform::reset();
    QVERIFY(m_session->setTracing(tracing));
    m_session->takeOutcome();
}

// Whatever was handed out has been freed exactly once.
void ScriptTable::cleanup()
{
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
}

void ScriptTable::cleanupTestCase()
{
    m_session.reset();
}

void ScriptTable::scripts_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < m_rows.size(); ++i) {
        const ScriptRow &row = m_rows[i];
        QTest::addRow("%s%s%s", row.script, *row.name ? ": " : "", row.name) << i;
    }
}

void ScriptTable::scripts()
{
    QFETCH_GLOBAL(const bool, tracing);
    QFETCH(const int, index);
    const ScriptRow &row = m_rows[index];
    bool wasTracedBefore = false;
    if (*row.calls) {
        RecordingPlatform::answer(row.function(), row.answer);
        RecordingPlatform::onCall(row.firstFunction(), [&] { wasTracedBefore = m_session->hasTraces(); });
    }

    const StreamCapture console(std::cout);
    const ScriptSession::Outcome outcome = m_session->run(row.script);
    if (row.result == refused)
        QVERIFY2(outcome.result.startsWith(refused), qPrintable(outcome.result));
    else if (!row.result.isNull())
        QCOMPARE(outcome.result, QString(row.result));
    QCOMPARE(outcome.calls, QByteArray(row.calls));
    QCOMPARE(outcome.traces, tracing ? ScriptSession::quotedLines(row.trace) : QString());
    QCOMPARE(wasTracedBefore, tracing && *row.calls);
    QCOMPARE(console.text(), QByteArray(row.console));
    QVERIFY2(isAll(row.message, outcome.messages), qPrintable(outcome.messages.join('\n')));
    QVERIFY2(isAll(row.warning, outcome.warnings), qPrintable(outcome.warnings.join('\n')));
}

void ScriptTable::numbersOfThePlatformReachThePageUnchanged_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("answer");
    QSet<QByteArray> seen;
    for (int i = 0; i < m_rows.size(); ++i) {
        const QByteArray member = m_rows[i].member();
        if (!m_passesThrough(m_rows[i]) || seen.contains(member))
            continue;
        seen += member;
        for (const int answer : {0, 1, INT_MAX, -1, int(KVR_ERR_INVALID_ID), int(KVR_BOX), INT_MIN})
            QTest::addRow("%s: %d", member.constData(), answer) << i << answer;
    }
}

void ScriptTable::numbersOfThePlatformReachThePageUnchanged()
{
    QFETCH(const int, index);
    QFETCH(const int, answer);
    RecordingPlatform::answer(m_rows[index].function(), answer);
    QCOMPARE(m_session->run(m_rows[index].script).result, QString::number(answer));
}

void ScriptTable::everyMemberHasARow()
{
    const QMetaObject *const metaObject = scriptMetaObject(&m_session->plugin(), m_object);
    QVERIFY(metaObject);
    QSet<QByteArray> members;
    for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i) {
        if (metaObject->method(i).methodType() == QMetaMethod::Slot)
            members += metaObject->method(i).name();
    }
    for (int i = metaObject->propertyOffset(); i < metaObject->propertyCount(); ++i)
        members += metaObject->property(i).name();
    QSet<QByteArray> tested;
    for (const ScriptRow &row : m_rows) {
        const bool showsWhatIsNotThere = row.result == "undefined" && !*row.calls;
        if (!showsWhatIsNotThere && !row.result.startsWith(refused))
            tested += row.member();
    }
    const QByteArrayList untested = (members - tested).values();
    QVERIFY2(untested.isEmpty(), m_object + " has no row for " + untested.join(", "));
    const QByteArrayList strangers = (tested - members).values();
    QVERIFY2(strangers.isEmpty(), m_object + " has rows for " + strangers.join(", ") + ", which it does not have");
}
