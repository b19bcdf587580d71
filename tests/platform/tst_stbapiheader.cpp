// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ListDifference.h"
#include "tests/support/StbApiHeader.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

} // namespace

// The contract's header as a box maker gets it, and the two libraries that fulfil it here.
class TestStbApiHeader : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void itCompilesAloneWithoutAWarning_data();
    void itCompilesAloneWithoutAWarning();
    void everyFunctionHasACommentAboveItOrItsGroup();
    void librariesOfferExactlyItsFunctions_data();
    void librariesOfferExactlyItsFunctions();

private:
    QByteArray m_header;
    QStringList m_functions;
};

void TestStbApiHeader::initTestCase()
{
    QFile file(STBAPI_HEADER);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    m_header = file.readAll();

    m_functions = functionsOfStbApi(m_header);
    QVERIFY(m_functions.size() > 1);
}

void TestStbApiHeader::itCompilesAloneWithoutAWarning_data()
{
    QTest::addColumn<QString>("compiler");
    QTest::addColumn<QStringList>("language");

    QTest::newRow("C11") << C_COMPILER << QStringList{"-x", "c", "-std=c11"};
    QTest::newRow("C++11") << CXX_COMPILER << QStringList{"-x", "c++", "-std=c++11"};
    QTest::newRow("C++17") << CXX_COMPILER << QStringList{"-x", "c++", "-std=c++17"};
}

void TestStbApiHeader::itCompilesAloneWithoutAWarning()
{
    QFETCH(const QString, compiler);
    QFETCH(const QStringList, language);

    const QTemporaryDir directory;
    QFile source(directory.filePath("alone"));
    QVERIFY(source.open(QIODevice::WriteOnly));
    source.write("#include \"" STBAPI_HEADER "\"\nint use(KVR_Track *track);\n");
    source.close();

    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(compiler,
                  language
                      + QStringList{"-Wall", "-Wextra", "-Wpedantic", "-Werror", "-fsyntax-only", source.fileName()});
    QVERIFY2(process.waitForFinished(), qPrintable(process.errorString()));
    QVERIFY2(process.exitCode() == 0, process.readAll());
}

void TestStbApiHeader::everyFunctionHasACommentAboveItOrItsGroup()
{
    // A group is a run of lines without an empty one.
    const QString text = m_header;
    static const QRegularExpression emptyLines("\n\\s*\n");
    static const QRegularExpression declaration("^[\\w *]*\\bKVR_\\w+\\(", QRegularExpression::MultilineOption);
    QByteArrayList undocumented;
    const QStringList groups = text.split(emptyLines);
    for (const QString &group : groups) {
        const int function = group.indexOf(declaration);
        if (function >= 0 && !group.trimmed().startsWith("/*"))
            undocumented += group.mid(function).toUtf8();
    }
    QVERIFY2(undocumented.isEmpty(), undocumented.join(", "));
}

void TestStbApiHeader::librariesOfferExactlyItsFunctions_data()
{
    QTest::addColumn<QString>("library");

    QTest::newRow("recording platform") << RECORDING_LIBRARY;
    QTest::newRow("desk platform") << DESK_LIBRARY;
}

void TestStbApiHeader::librariesOfferExactlyItsFunctions()
{
    QFETCH(const QString, library);

    QProcess nm;
    nm.start("nm", {"--dynamic", "--defined-only", "--format=just-symbols", library});
    QVERIFY2(nm.waitForFinished(), qPrintable(nm.errorString()));
    QVERIFY2(nm.exitCode() == 0, nm.readAllStandardError());
    QStringList offered;
    const QList<QByteArray> names = nm.readAllStandardOutput().split('\n');
    for (const QByteArray &name : names) {
        if (name.startsWith("KVR_"))
            offered += name;
    }
    QCOMPARE(listDifference(sorted(offered), sorted(m_functions)), QString());
}

QTEST_APPLESS_MAIN(TestStbApiHeader)

#include "tst_stbapiheader.moc"
