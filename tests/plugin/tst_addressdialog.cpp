// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StreamCapture.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"
#include "tests/support/MessageLog.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QWebView>
#include <QtTest>

namespace {

QDialog *openDialog()
{
    return qobject_cast<QDialog *>(QApplication::activeModalWidget());
}

// Opens the dialog and runs an action while it is open, which has to close it.
void withDialog(HostedPlugin &plugin, const std::function<void(QDialog *)> &action)
{
    plugin.application()->show();
    plugin.application()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(plugin.application())); // the keys are a shortcut of the window
    bool wasOpen = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!openDialog() || wasOpen)
            return;
        wasOpen = true;
        action(openDialog());
    });
    watch.start(1);
    QTest::keyClick(plugin.browser(), Qt::Key_L, Qt::ControlModifier);
    QTRY_VERIFY(wasOpen);
    QTRY_VERIFY(!openDialog());
}

void enterAddress(QDialog *dialog, const QUrl &url)
{
    auto *edit = dialog->findChild<QLineEdit *>();
    edit->selectAll();
    QTest::keyClicks(edit, url.toString());
    QTest::mouseClick(dialog->findChild<QPushButton *>(), Qt::LeftButton);
}

} // namespace

// The technician's dialog for another address.
class TestAddressDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void itShowsTheCurrentAddress();
    void goLoadsTheAddress();
    void closingItChangesNothing();
    void aFailingAddressIsNotTriedAgain();
    void nothingIsDumpedAfterGo();
    void noErrorPageComesAfterGo_data();
    void noErrorPageComesAfterGo();
    void f1LeavesWhileItIsOpen();

private:
    HttpServer m_server;
};

void TestAddressDialog::init()
{
    m_server.serve("/first", "<title>First</title>");
    m_server.serve("/second", "<title>Second</title>");
    PluginManifest manifest;
    manifest.homePage = m_server.url("/first").toString();
    manifest.errorPage = m_server.url("/error").toString();
    HostedPlugin::writeManifest(manifest);
}

void TestAddressDialog::itShowsTheCurrentAddress()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(plugin.browser()->title(), QString("First"));
    bool asked = false;

    withDialog(plugin, [&](QDialog *dialog) {
        QCOMPARE(dialog->parentWidget(), plugin.browser());
        QVERIFY(dialog->isModal());
        QCOMPARE(dialog->minimumSize(), QSize(400, 100));
        QCOMPARE(dialog->maximumSize(), QSize(400, 100));
        auto *label = dialog->findChild<QLabel *>();
        QCOMPARE(label->text(), QString("Enter URL: "));
        QCOMPARE(label->pos(), QPoint(0, 0));
        QVERIFY(label->palette().color(QPalette::Window) != label->palette().color(QPalette::WindowText));
        auto *edit = dialog->findChild<QLineEdit *>();
        QCOMPARE(edit->text(), m_server.url("/first").toString());
        QCOMPARE(edit->pos(), QPoint(100, 0));
        QCOMPARE(edit->width(), 300);
        QCOMPARE(edit->minimumWidth(), edit->maximumWidth());
        auto *button = dialog->findChild<QPushButton *>();
        QCOMPARE(button->text(), QString("Go"));
        QCOMPARE(button->pos(), QPoint(0, 50));
        asked = true;
        dialog->close();
    });
    // Checks that fail leave the dialog open.
    if (openDialog())
        openDialog()->close();
    QVERIFY(asked);
}

void TestAddressDialog::goLoadsTheAddress()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(plugin.browser()->title(), QString("First"));
    const StreamCapture output(std::cout);

    withDialog(plugin, [this](QDialog *dialog) { enterAddress(dialog, m_server.url("/second")); });
    QTRY_COMPARE(plugin.browser()->title(), QString("Second"));
    QCOMPARE(output.text(), m_server.url("/second").toEncoded() + "\n");
    QVERIFY(!plugin.browser()->findChild<QDialog *>());
}

void TestAddressDialog::closingItChangesNothing()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(plugin.browser()->title(), QString("First"));
    const int requests = m_server.requests().size();
    const StreamCapture output(std::cout);

    withDialog(plugin, [](QDialog *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    QCOMPARE(plugin.browser()->title(), QString("First"));
    QCOMPARE(m_server.requests().size(), requests);
    QCOMPARE(output.text(), QByteArray());
}

void TestAddressDialog::aFailingAddressIsNotTriedAgain()
{
    HttpServer gone;
    gone.refuse();
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(plugin.browser()->title(), QString("First"));
    const StreamCapture output(std::cout);
    const MessageLog log;
    const QSignalSpy loads(plugin.browser(), &QWebView::loadFinished);

    withDialog(plugin, [&gone](QDialog *dialog) { enterAddress(dialog, gone.url()); });
    QTRY_VERIFY(!loads.isEmpty());
    QVERIFY(!loads.last().first().toBool());
    QTest::qWait(1300); // longer than a reload waits
    QCOMPARE(log.debugLines().filter("Try to load page"), QStringList());
    QCOMPARE(log.debugLines().count("Create request"), 1);
}

void TestAddressDialog::nothingIsDumpedAfterGo()
{
    QFile level("/etc/stbjsapi_debug");
    QVERIFY(level.open(QIODevice::WriteOnly));
    level.write("1\n");
    level.close();
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(plugin.browser()->title(), QString("First"));
    QTRY_VERIFY(QFile::exists("/tmp/page.html"));
    QVERIFY(QFile::remove("/tmp/page.html"));
    const StreamCapture output(std::cout);

    withDialog(plugin, [this](QDialog *dialog) { enterAddress(dialog, m_server.url("/second")); });
    QVERIFY(plugin.waitForLoad());
    QCOMPARE(plugin.browser()->title(), QString("Second"));
    QVERIFY(!QFile::exists("/tmp/page.html"));
    level.remove();
}

void TestAddressDialog::noErrorPageComesAfterGo_data()
{
    QTest::addColumn<bool>("answers");

    QTest::newRow("a page that arrives") << true;
    QTest::newRow("a page that stops on the way") << false;
}

void TestAddressDialog::noErrorPageComesAfterGo()
{
    QFETCH(bool, answers);
    HttpServer server;
    HttpServer::Page page = {QByteArray(10000, ' ') + "<title>Portal</title>"};
    if (!answers)
        page.stallAt = 8000;
    server.serve("/", page);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(plugin.browser()->title(), QString("First"));
    const StreamCapture output(std::cout);

    withDialog(plugin, [&server](QDialog *dialog) { enterAddress(dialog, server.url()); });
    QTRY_COMPARE(server.requests().size(), 1);
    QTest::qWait(6000); // longer than a home page may make no progress
    QCOMPARE(m_server.requestsFor("/error").size(), 0);
    QCOMPARE(plugin.browser()->url(), server.url());
}

void TestAddressDialog::f1LeavesWhileItIsOpen()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE(plugin.browser()->title(), QString("First"));
    // As a launcher does it.
    QObject::connect(plugin.application(), &CStbApplication::exit, plugin.application(), &QObject::deleteLater);

    withDialog(plugin, [](QDialog *dialog) {
        QTest::keyClick(dialog, Qt::Key_F1);
        dialog->close(); // the launcher's turn comes when its event loop runs again
    });
    QTRY_VERIFY(!plugin.application());
}

QTEST_MAIN(TestAddressDialog)
#include "tst_addressdialog.moc"
