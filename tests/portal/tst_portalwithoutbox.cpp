// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PortalPage.h"

#include <QDir>
#include <QRegularExpression>
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

/// The portal in a web view that is no box: its author sees it, can go everywhere, and is told what is missing. This
/// engine takes style sheets that a box's does not, so they are searched for what it would miss.
class TestPortalWithoutBox : public QObject
{
    Q_OBJECT

private slots:
    void everyScreenOpensWithoutAScriptError_data();
    void everyScreenOpensWithoutAScriptError();
    void theStyleSheetsNameNothingThatABoxLacks_data();
    void theStyleSheetsNameNothingThatABoxLacks();
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
    PortalPage::limitToBox(page->mainFrame());
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

void TestPortalWithoutBox::theStyleSheetsNameNothingThatABoxLacks_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::newRow("a property without its prefix")
        << R"(^\s*(animation|appearance|box|columns?|transform|transition|user-select)[\w-]*:)";
    QTest::newRow("a later property") << R"(^\s*(align|flex|gap|grid|justify|object|order)[\w-]*:)";
    QTest::newRow("a later value") << R"(:.*\b(calc|flex|grid|linear-gradient|sticky|unset|var)\b)";
    QTest::newRow("a unit of the window's size") << R"([0-9](vw|vh|vmin|vmax)\b)";
    QTest::newRow("more than one simple selector in :not()") << R"(:not\([^)]+[.:#,[ ])";
    QTest::newRow("a later pseudo class") << R"(:(has|is|matches|where|focus-within)\b)";
}

void TestPortalWithoutBox::theStyleSheetsNameNothingThatABoxLacks()
{
    QFETCH(QString, pattern);
    const QRegularExpression lacking(pattern, QRegularExpression::MultilineOption);
    const QDir folder(PortalPage::url().resolved(QUrl("css")).toLocalFile());
    const QFileInfoList files = folder.entryInfoList({"*.css"});
    QVERIFY(!files.isEmpty());
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(lacking.match(QString::fromUtf8(file.readAll())).captured(), QString());
    }
}

QTEST_MAIN(TestPortalWithoutBox)
#include "tst_portalwithoutbox.moc"
