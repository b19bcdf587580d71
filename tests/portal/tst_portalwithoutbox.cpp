// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PortalPage.h"
#include "launcher/engine/BoxEngine.h"
#include "launcher/engine/SourceCheck.h"

#include <QDirIterator>
#include <QSignalSpy>
#include <QTest>
#include <QWebElement>
#include <QWebFrame>
#include <QWebPage>
#include <QWebView>

namespace {

// A page that keeps what its scripts complain about.
class Page : public QWebPage
{
public:
    QStringList complaints;

protected:
    void javaScriptConsoleMessage(const QString &message, int line, const QString &source) override
    {
        complaints += QString("%1:%2: %3").arg(source).arg(line).arg(message);
    }
};

} // namespace

/// The portal in a web view that is no box, but has a box's engine: its author sees it, can go everywhere, and is told
/// what is missing.
class TestPortalWithoutBox : public QObject
{
    Q_OBJECT

private slots:
    void everyScreenOpensWithoutAScriptError_data();
    void everyScreenOpensWithoutAScriptError();
    void aBoxKnowsAllThatItIsWrittenIn();
};

void TestPortalWithoutBox::everyScreenOpensWithoutAScriptError_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<QString>("screen");
    QTest::addColumn<QString>("selector");
    QTest::addColumn<QString>("text");
    const auto down = [](int times, const QList<int> &more) {
        QList<int> keys;
        while (--times >= 0)
            keys += Qt::Key_Down;
        return keys + more;
    };
    const QString missing = "This page has no StbMedia: it is not on a box";
    QTest::newRow("home") << QList<int>{} << "home"
                          << "#picture-note" << missing;
    QTest::newRow("a channel") << QList<int>{Qt::Key_Return, Qt::Key_Down, Qt::Key_Return} << "home"
                               << "#playing-state" << missing;
    QTest::newRow("full screen") << QList<int>{Qt::Key_Right, Qt::Key_Return, Qt::Key_Down, Qt::Key_Left} << "video"
                                 << "#playing-name"
                                 << "Life";
    QTest::newRow("tracks") << QList<int>{Qt::Key_Right, Qt::Key_Return, Qt::Key_Return} << "tracks"
                            << "button.row"
                            << "Record this channel";
    QTest::newRow("recordings") << down(
        3, {Qt::Key_Return, Qt::Key_Return, Qt::Key_Escape, Qt::Key_Escape, Qt::Key_Down, Qt::Key_Up, Qt::Key_Return})
                                << "recordings"
                                << ".row"
                                << "This page has no StbPVR Nothing can be recorded";
    QTest::newRow("settings") << down(4, {Qt::Key_Return, Qt::Key_Right, Qt::Key_Left}) << "settings"
                              << ".row .value"
                              << "no player";
    QTest::newRow("volume") << QList<int>{Qt::Key_VolumeUp, Qt::Key_VolumeMute} << "home"
                            << "#notice"
                            << "Volume: no player";
    QTest::newRow("about") << down(5, {Qt::Key_Return}) << "about"
                           << "#row-StbPVR .value"
                           << "not found";
    QTest::newRow("members") << down(5, {Qt::Key_Return, Qt::Key_Return}) << "members"
                             << "#members-count"
                             << "not found in this page";
}

void TestPortalWithoutBox::everyScreenOpensWithoutAScriptError()
{
    QFETCH(QList<int>, keys);
    QFETCH(QString, selector);
    QWebView view;
    auto *page = new Page;
    page->setParent(&view);
    view.setPage(page);
    view.resize(1280, 720);
    page->mainFrame();
    const BoxEngine engine(page);
    QSignalSpy loaded(&view, &QWebView::loadFinished);
    view.load(PortalPage::url());
    view.show();
    QVERIFY(loaded.wait(30000));
    for (const int key : qAsConst(keys))
        QTest::sendKeyEvent(QTest::Click, &view, Qt::Key(key), QString(), Qt::NoModifier);
    QCOMPARE(page->complaints, QStringList());
    QTEST(page->mainFrame()->findFirstElement("body").attribute("data-screen"), "screen");
    QTEST(page->mainFrame()->findFirstElement(selector).toPlainText().simplified(), "text");
}

void TestPortalWithoutBox::aBoxKnowsAllThatItIsWrittenIn()
{
    SourceCheck check;
    QSignalSpy looked(&check, &SourceCheck::looked);
    QDirIterator files(QFileInfo(PortalPage::url().toLocalFile()).path(), {"*.html", "*.css", "*.js"}, QDir::Files,
                       QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
    const QHash<QString, QString> kinds = {{"html", "page"}, {"css", "style"}, {"js", "script"}};
    int count = 0;
    while (files.hasNext()) {
        QFile file(files.next());
        QVERIFY(file.open(QIODevice::ReadOnly));
        check.look(files.fileName(), kinds[files.fileInfo().suffix()], file.readAll());
        ++count;
    }
    QVERIFY(count > 20);
    QTRY_COMPARE_WITH_TIMEOUT(looked.count(), count, 60000);
    for (const QVariantList &signal : qAsConst(looked))
        QCOMPARE(signal.at(1).toStringList(), QStringList());
}

QTEST_MAIN(TestPortalWithoutBox)
#include "tst_portalwithoutbox.moc"
