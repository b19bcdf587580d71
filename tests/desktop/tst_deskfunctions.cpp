// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "KvrFunctions.h"
#include "tests/support/ListDifference.h"
#include "tests/support/StbApiHeader.h"

#include <QFile>
#include <QTest>

#include <climits>

namespace {

const char *nameOf(KvrFunction::Subject subject)
{
    return subject == KvrFunction::Player ? "player" : "recording";
}

} // namespace

/// What every function of the desk box makes of identifiers and pointers that lead nowhere.
class TestDeskFunctions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theTableHasTheFunctionsOfTheHeader();
    void whatDoesNotExistIsRefused_data();
    void whatDoesNotExistIsRefused();
    void nullPointersAreRefused_data();
    void nullPointersAreRefused();

private:
    KVR_ID idOf(const KvrFunction &function) const
    {
        return function.subject == KvrFunction::Recording ? m_recording : m_player;
    }

    KVR_ID m_player = -1;
    KVR_ID m_recording = -1;
};

void TestDeskFunctions::initTestCase()
{
    m_player = KVR_CreatePlayer();
    QVERIFY(m_player > 0);
    m_recording = KVR_AddRecord("udp://239.1.1.1:5000", "a.ts", 4000000000U, 60);
    QVERIFY(m_recording >= 0);
}

void TestDeskFunctions::theTableHasTheFunctionsOfTheHeader()
{
    QFile header(QCoreApplication::applicationDirPath() + "/stbapi.h");
    QVERIFY2(header.open(QIODevice::ReadOnly), qPrintable(header.fileName() + ": " + header.errorString()));
    QStringList declared = functionsOfStbApi(header.readAll());
    declared.sort();
    QVERIFY(declared.size() > 1);
    QStringList names;
    for (const KvrFunction &function : kvrFunctions())
        names += function.name;
    names.sort();
    QCOMPARE(listDifference(names, declared), QString());
}

void TestDeskFunctions::whatDoesNotExistIsRefused_data()
{
    QTest::addColumn<std::size_t>("index");
    QTest::addColumn<int>("id");
    for (std::size_t i = 0; i < kvrFunctions().size(); ++i) {
        const KvrFunction &function = kvrFunctions()[i];
        if (function.subject == KvrFunction::Box)
            continue;
        for (const int id : {-1, int(KVR_BOX), INT_MIN, INT_MAX})
            QTest::addRow("%s of %s %d", function.name.constData(), nameOf(function.subject), id) << i << id;
    }
}

void TestDeskFunctions::whatDoesNotExistIsRefused()
{
    QFETCH(const std::size_t, index);
    QFETCH(const int, id);
    const KvrFunction &function = kvrFunctions()[index];
    QCOMPARE(function.call(id), function.unknown);
    QVERIFY(kvrOutputsAreUntouched());
}

void TestDeskFunctions::nullPointersAreRefused_data()
{
    QTest::addColumn<std::size_t>("index");
    QTest::addColumn<std::size_t>("pointer");
    for (std::size_t i = 0; i < kvrFunctions().size(); ++i) {
        for (std::size_t pointer = 0; pointer < kvrFunctions()[i].nullCalls.size(); ++pointer)
            QTest::addRow("%s, pointer %zu", kvrFunctions()[i].name.constData(), pointer + 1) << i << pointer;
    }
}

void TestDeskFunctions::nullPointersAreRefused()
{
    QFETCH(const std::size_t, index);
    QFETCH(const std::size_t, pointer);
    const KvrFunction &function = kvrFunctions()[index];
    QCOMPARE(function.nullCalls[pointer](idOf(function)), QByteArray::number(KVR_ERR_INVALID_ARGUMENT));
    QVERIFY(kvrOutputsAreUntouched());
}

QTEST_GUILESS_MAIN(TestDeskFunctions)
#include "tst_deskfunctions.moc"
