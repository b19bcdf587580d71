// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/KeyScript.h"

#include <QTest>

/// The keys of the command line.
class TestKeyScript : public QObject
{
    Q_OBJECT

private slots:
    void aNameIsAKey_data();
    void aNameIsAKey();
    void whatIsNoKeyIsRefused_data();
    void whatIsNoKeyIsRefused();
    void keysArePressedInOrderWithPauses();
    void whatRemainsIsTheKeysToCome();
};

void TestKeyScript::aNameIsAKey_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("text");
    QTest::newRow("arrow") << "Down" << int(Qt::Key_Down) << int(Qt::NoModifier) << "";
    QTest::newRow("OK") << "Return" << int(Qt::Key_Return) << int(Qt::NoModifier) << "\r";
    QTest::newRow("function key") << "F1" << int(Qt::Key_F1) << int(Qt::NoModifier) << "";
    QTest::newRow("media key") << "VolumeUp" << int(Qt::Key_VolumeUp) << int(Qt::NoModifier) << "";
    QTest::newRow("the other name of a key") << "Esc" << int(Qt::Key_Escape) << int(Qt::NoModifier) << "\x1b";
    QTest::newRow("shortcut") << "Ctrl+L" << int(Qt::Key_L) << int(Qt::ControlModifier) << "";
    QTest::newRow("shortcut of a key that types")
        << "Ctrl+Esc" << int(Qt::Key_Escape) << int(Qt::ControlModifier) << "";
    QTest::newRow("two modifiers") << "Ctrl+Shift+C" << int(Qt::Key_C) << int(Qt::ControlModifier | Qt::ShiftModifier)
                                   << "";
    QTest::newRow("digit") << "7" << int(Qt::Key_7) << int(Qt::NoModifier) << "7";
    QTest::newRow("small letter") << "a" << int(Qt::Key_A) << int(Qt::NoModifier) << "a";
    QTest::newRow("capital letter") << "A" << int(Qt::Key_A) << int(Qt::ShiftModifier) << "A";
    QTest::newRow("other alphabet") << "я" << 0x42f << int(Qt::NoModifier) << "я";
    QTest::newRow("asterisk") << "*" << int(Qt::Key_Asterisk) << int(Qt::NoModifier) << "*";
}

void TestKeyScript::aNameIsAKey()
{
    QFETCH(QString, name);
    QString error;
    const auto steps = KeyScript::parse(name, &error);
    QVERIFY2(steps, qPrintable(error));
    QCOMPARE(steps->size(), 1);
    const Key key = *steps->first().key;
    QTEST(key.code, "code");
    QTEST(int(key.modifiers), "modifiers");
    QTEST(key.text, "text");
}

void TestKeyScript::whatIsNoKeyIsRefused_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text :
         {"Dwon", "Down*", "Down*x", "wait:", "wait:soon", "text:", "Down*99999", "Ctrl+", "unknown"})
        QTest::newRow(text) << QString(text);
}

void TestKeyScript::whatIsNoKeyIsRefused()
{
    QFETCH(QString, text);
    QString error;
    QVERIFY(!KeyScript::parse("Up " + text, &error));
    QCOMPARE(error, QString("--keys \"%1\" is not the name of a key, \"text:...\" or \"wait:500\"").arg(text));
}

void TestKeyScript::keysArePressedInOrderWithPauses()
{
    QString error;
    KeyScript script(*KeyScript::parse("Down*2 wait:400 text:aB", &error));
    QStringList pressed;
    QList<qint64> times;
    QElapsedTimer clock;
    connect(&script, &KeyScript::pressed, this, [&](const Key &key) {
        pressed << QString::number(key.code, 16) + key.text;
        times << clock.elapsed();
    });
    clock.start();
    script.start();
    QTRY_COMPARE(script.remaining(), QString("text:a text:B"));
    script.start(); // as when a second page has loaded
    QTRY_COMPARE(pressed, QStringList({"1000015", "1000015", "41a", "42B"}));
    QVERIFY(times[2] - times[1] >= 400);
    QVERIFY(times[1] - times[0] < 400);
    QCOMPARE(script.remaining(), QString());
}

void TestKeyScript::whatRemainsIsTheKeysToCome()
{
    QString error;
    KeyScript script(*KeyScript::parse("Down*3 wait:50 text:ab Ctrl+L", &error));
    QCOMPARE(script.remaining(), QString("Down Down Down wait:50 text:a text:b Ctrl+L"));
    int pressed = 0;
    connect(&script, &KeyScript::pressed, this, [&] { ++pressed; });
    script.start();
    QTRY_COMPARE(pressed, 1);
    QCOMPARE(script.remaining(), QString("Down Down wait:50 text:a text:b Ctrl+L"));
}

QTEST_GUILESS_MAIN(TestKeyScript)

#include "tst_keyscript.moc"
