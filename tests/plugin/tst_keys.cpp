// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/HostedPlugin.h"

#include <QElapsedTimer>
#include <QWebView>
#include <QtTest>

namespace {

// A key press some time after the first one.
struct Press
{
    int time; // in milliseconds
    Qt::Key key;
};

// Presses the keys at their times. False if one of them was late.
bool pressInTime(HostedPlugin &plugin, const QVector<Press> &presses)
{
    bool inTime = true;
    QElapsedTimer clock;
    clock.start();
    for (const Press &press : presses) {
        QTest::qWait(int(qMax<qint64>(0, press.time - clock.elapsed())));
        plugin.evaluate("now = " + QString::number(press.time));
        QTest::keyPress(plugin.browser(), press.key);
        inTime = inTime && clock.elapsed() < press.time + 25;
    }
    return inTime;
}

} // namespace

Q_DECLARE_METATYPE(QVector<Press>)

// Fast repeats of one key are kept from the page if the page wants it so.
class TestKeys : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void repeatsOfOneKeyAreThinnedOut_data();
    void repeatsOfOneKeyAreThinnedOut();
    void releasesAreNeverThinnedOut();
    void theDelayOutlivesThePage();
};

void TestKeys::init()
{
    HostedPlugin::writeManifest(PluginManifest());
}

void TestKeys::repeatsOfOneKeyAreThinnedOut_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QVector<Press>>("presses");
    QTest::addColumn<QString>("keys"); // that reach the page

    const QVector<Press> repeats = {{0, Qt::Key_A}, {100, Qt::Key_A}, {150, Qt::Key_A}, {210, Qt::Key_A}};
    const QString all = "0:A 100:A 150:A 210:A";
    QTest::newRow("no delay at first") << "" << repeats << all;
    QTest::newRow("200 ms") << "StbDisplay.SetKeyEventPeriod(200)" << repeats << "0:A 210:A";
    QTest::newRow("counted from the last one accepted")
        << "StbDisplay.SetKeyEventPeriod(200)"
        << QVector<Press>{{0, Qt::Key_A}, {120, Qt::Key_A}, {240, Qt::Key_A}, {360, Qt::Key_A}, {480, Qt::Key_A}}
        << "0:A 240:A 480:A";
    QTest::newRow("different keys") << "StbDisplay.SetKeyEventPeriod(200)"
                                    << QVector<Press>{{0, Qt::Key_A}, {50, Qt::Key_B}, {100, Qt::Key_A}}
                                    << "0:A 50:B 100:A";
    QTest::newRow("a repeat after another key")
        << "StbDisplay.SetKeyEventPeriod(200)"
        << QVector<Press>{{0, Qt::Key_A}, {50, Qt::Key_B}, {100, Qt::Key_B}, {150, Qt::Key_A}} << "0:A 50:B 150:A";
    QTest::newRow("a short delay") << "StbDisplay.SetKeyEventPeriod(1)" << repeats << all;
    QTest::newRow("switched off again") << "StbDisplay.SetKeyEventPeriod(200); StbDisplay.SetKeyEventPeriod(0)"
                                        << repeats << all;
    QTest::newRow("a negative delay") << "StbDisplay.SetKeyEventPeriod(200); StbDisplay.SetKeyEventPeriod(-200)"
                                      << repeats << all;
}

void TestKeys::repeatsOfOneKeyAreThinnedOut()
{
    QFETCH(QString, script);
    QFETCH(QVector<Press>, presses);
    QFETCH(QString, keys);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("<script>var keys = []; var now = 0; document.onkeydown = function (event)"
                            "{ keys.push(now + ':' + String.fromCharCode(event.keyCode)); };</script>"));
    plugin.evaluate(script);

    bool inTime = false;
    for (int attempt = 0; attempt < 10 && !inTime; ++attempt) {
        QTest::keyPress(plugin.browser(), Qt::Key_Z); // so that the first one is no repeat
        plugin.evaluate("keys = []");
        inTime = pressInTime(plugin, presses);
    }
    QVERIFY2(inTime, "This computer is too busy to press keys in time");
    QCOMPARE(plugin.evaluate("keys.join(' ')").toString(), keys);
}

void TestKeys::releasesAreNeverThinnedOut()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("<script>var keys = []; document.onkeydown = function () { keys.push('down'); };"
                            "document.onkeyup = function () { keys.push('up'); };</script>"));
    plugin.evaluate("StbDisplay.SetKeyEventPeriod(10000)");

    for (int i = 0; i < 3; ++i)
        QTest::keyClick(plugin.browser(), Qt::Key_A);
    QCOMPARE(plugin.evaluate("keys.join(' ')").toString(), QString("down up up up"));
}

void TestKeys::theDelayOutlivesThePage()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("First"));
    plugin.evaluate("StbDisplay.SetKeyEventPeriod(10000)");
    QVERIFY(plugin.loadHtml("<script>var keys = 0; document.onkeydown = function () { ++keys; };</script>"));

    QTest::keyPress(plugin.browser(), Qt::Key_A);
    QTest::keyPress(plugin.browser(), Qt::Key_A);
    QCOMPARE(plugin.evaluate("keys").toInt(), 1);
}

QTEST_MAIN(TestKeys)
#include "tst_keys.moc"
