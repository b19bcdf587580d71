// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "KvrFunctions.h"
#include "tests/support/ListDifference.h"
#include "tests/support/StbApiHeader.h"

#include <QFile>
#include <QTest>

#include <climits>
#include <functional>
#include <vector>

namespace {

const char *nameOf(KvrFunction::Subject subject)
{
    return subject == KvrFunction::Player ? "player" : "recording";
}

// Has a player show its picture in a window of this size.
int setPlayerWindow(KVR_ID player, int width, int height)
{
    const KVR_Rect window = {0, 0, width, height};
    return KVR_SetPlayerViewPort(player, &window);
}

int setGraphicsViewport(int width, int height)
{
    const KVR_Rect viewport = {0, 0, width, height};
    return KVR_SetGraphicsViewport(&viewport);
}

// A limit that stbapi.h tells of, in the comment above the function: calls that are refused just beyond it, and the
// answers within, which may be another failure.
struct Limit
{
    const char *function;
    const char *words;
    std::function<std::vector<int>(KVR_ID player, KVR_ID recording)> beyond;
    std::function<std::vector<int>(KVR_ID player, KVR_ID recording)> within;
};

using Results = std::vector<int>;

const std::vector<Limit> &limits()
{
    static const std::vector<Limit> all = {
        {"KVR_SetSpeed", "for 0, above 100 and below -100",
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetSpeed(player, 0), KVR_SetSpeed(player, 101), KVR_SetSpeed(player, -101)};
         },
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetSpeed(player, 1), KVR_SetSpeed(player, 100), KVR_SetSpeed(player, -100)};
         }},
        {"KVR_SetPlayerViewPort", "width and height are from 1 to twice those of the screen",
         [](KVR_ID player, KVR_ID) {
             return Results{setPlayerWindow(player, 0, 1), setPlayerWindow(player, 1, 0),
                            setPlayerWindow(player, 3841, 1), setPlayerWindow(player, 1, 2161)};
         },
         [](KVR_ID player, KVR_ID) {
             return Results{setPlayerWindow(player, 3840, 2160), setPlayerWindow(player, 1, 1)};
         }},
        {"KVR_SetPosition", "for a negative position",
         [](KVR_ID player, KVR_ID) { return Results{KVR_SetPosition(player, -1)}; },
         [](KVR_ID player, KVR_ID) { return Results{KVR_SetPosition(player, 0)}; }},
        {"KVR_SetTeletextPage", "100 to 899",
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetTeletextPage(player, 99), KVR_SetTeletextPage(player, 900)};
         },
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetTeletextPage(player, 899), KVR_SetTeletextPage(player, 100)};
         }},
        {"KVR_SetZoom", "0.1 to 10.0",
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetZoom(player, 0.09), KVR_SetZoom(player, 10.1)};
         },
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetZoom(player, 0.1), KVR_SetZoom(player, 10)};
         }},
        {"KVR_SetPlayerAlphaLevel", "0 to 255",
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetPlayerAlphaLevel(player, -1), KVR_SetPlayerAlphaLevel(player, 256)};
         },
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetPlayerAlphaLevel(player, 0), KVR_SetPlayerAlphaLevel(player, 255)};
         }},
        {"KVR_SetPlayerDisplayMode", "an enum KVR_DisplayMode",
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetPlayerDisplayMode(player, -1), KVR_SetPlayerDisplayMode(player, 3)};
         },
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetPlayerDisplayMode(player, 2), KVR_SetPlayerDisplayMode(player, 0)};
         }},
        {"KVR_SetResolution", "unless both are positive",
         [](KVR_ID, KVR_ID) {
             return Results{KVR_SetResolution(0, 1), KVR_SetResolution(1, 0)};
         },
         [](KVR_ID, KVR_ID) {
             return Results{KVR_SetResolution(1, 1), KVR_SetResolution(1920, 1080)};
         }},
        {"KVR_SetGraphicsViewport", "unless width and height are positive",
         [](KVR_ID, KVR_ID) {
             return Results{setGraphicsViewport(0, 1), setGraphicsViewport(1, 0)};
         },
         [](KVR_ID, KVR_ID) {
             return Results{setGraphicsViewport(1, 1), setGraphicsViewport(1920, 1080)};
         }},
        {"KVR_SetGraphicsAlphaLevel", "0 to 255",
         [](KVR_ID, KVR_ID) { return Results{KVR_SetGraphicsAlphaLevel(256)}; },
         [](KVR_ID, KVR_ID) {
             return Results{KVR_SetGraphicsAlphaLevel(0), KVR_SetGraphicsAlphaLevel(255)};
         }},
        {"KVR_SetCurrentLayout", "for one that there is not",
         [](KVR_ID, KVR_ID) {
             return Results{KVR_SetCurrentLayout(-1), KVR_SetCurrentLayout(2)};
         },
         [](KVR_ID, KVR_ID) {
             return Results{KVR_SetCurrentLayout(1), KVR_SetCurrentLayout(0)};
         }},
        {"KVR_SetOrder", "for a player that there is not or that is named twice, and for a negative count",
         [](KVR_ID player, KVR_ID) {
             const int stranger = player + 1;
             const int twice[] = {player, player};
             return Results{KVR_SetOrder(&stranger, 1), KVR_SetOrder(twice, 2), KVR_SetOrder(twice, -1)};
         },
         [](KVR_ID player, KVR_ID) {
             return Results{KVR_SetOrder(&player, 1), KVR_SetOrder(nullptr, 0)};
         }},
        {"KVR_AddRecord", "for an empty url or a duration that is not positive",
         [](KVR_ID, KVR_ID) {
             return Results{KVR_AddRecord("", "b.ts", 4000000000U, 1),
                            KVR_AddRecord("udp://239.1.1.1:5000", "b.ts", 4000000000U, 0)};
         },
         [](KVR_ID, KVR_ID) { return Results{KVR_AddRecord("udp://239.1.1.1:5000", "b.ts", 4000000000U, 1)}; }},
        {"KVR_SetRecordDuration", "for a duration that is not positive",
         [](KVR_ID, KVR_ID recording) { return Results{KVR_SetRecordDuration(recording, 0)}; },
         [](KVR_ID, KVR_ID recording) { return Results{KVR_SetRecordDuration(recording, 1)}; }},
        {"KVR_SetBootParamValue", "for an empty key or a value of more than 255 bytes",
         [](KVR_ID, KVR_ID) {
             return Results{KVR_SetBootParamValue("", "1"), KVR_SetBootParamValue("key", QByteArray(256, 'x'))};
         },
         [](KVR_ID, KVR_ID) { return Results{KVR_SetBootParamValue("key", QByteArray(255, 'x'))}; }},
    };
    return all;
}

// The comment of the header that stands above a function's declaration, or above those of its group, in one line.
QString commentAbove(const QString &header, const QString &function)
{
    const int place = header.indexOf(' ' + function + '(');
    const int end = header.lastIndexOf("*/", place);
    const int begin = header.lastIndexOf("/*", end);
    return header.mid(begin, end - begin).replace("\n *", " ").simplified();
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
    void whatIsBeyondALimitOfTheContractIsRefused_data();
    void whatIsBeyondALimitOfTheContractIsRefused();

private:
    KVR_ID idOf(const KvrFunction &function) const
    {
        return function.subject == KvrFunction::Recording ? m_recording : m_player;
    }

    QString m_header;
    KVR_ID m_player = -1;
    KVR_ID m_recording = -1;
};

void TestDeskFunctions::initTestCase()
{
    QFile header(QCoreApplication::applicationDirPath() + "/stbapi.h");
    QVERIFY2(header.open(QIODevice::ReadOnly), qPrintable(header.fileName() + ": " + header.errorString()));
    m_header = header.readAll();
    m_player = KVR_CreatePlayer();
    QVERIFY(m_player > 0);
    m_recording = KVR_AddRecord("udp://239.1.1.1:5000", "a.ts", 4000000000U, 60);
    QVERIFY(m_recording >= 0);
}

void TestDeskFunctions::theTableHasTheFunctionsOfTheHeader()
{
    QStringList declared = functionsOfStbApi(m_header);
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

void TestDeskFunctions::whatIsBeyondALimitOfTheContractIsRefused_data()
{
    QTest::addColumn<std::size_t>("index");
    for (std::size_t i = 0; i < limits().size(); ++i)
        QTest::newRow(limits()[i].function) << i;
}

void TestDeskFunctions::whatIsBeyondALimitOfTheContractIsRefused()
{
    QFETCH(const std::size_t, index);
    const Limit &limit = limits()[index];
    for (const int result : limit.beyond(m_player, m_recording))
        QCOMPARE(result, int(KVR_ERR_INVALID_ARGUMENT));
    for (const int result : limit.within(m_player, m_recording))
        QVERIFY2(result != KVR_ERR_INVALID_ARGUMENT, limit.words);
    const QString comment = commentAbove(m_header, limit.function);
    QVERIFY2(comment.contains("KVR_ERR_INVALID_ARGUMENT"), qPrintable(comment));
    QVERIFY2(comment.contains(limit.words), qPrintable(comment));
}

QTEST_GUILESS_MAIN(TestDeskFunctions)
#include "tst_deskfunctions.moc"
