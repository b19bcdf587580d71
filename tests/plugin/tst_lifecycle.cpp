// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/platform/RecordingPlatform.h"
#include "tests/support/BoxFile.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/HttpServer.h"
#include "tests/support/MessageLog.h"

#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QWebFrame>
#include <QWebInspector>
#include <QWebView>
#include <QtTest>

namespace {

const QSize splashSize(300, 200);
const char *const splashFile = "splash.png";

const QByteArrayList resetCalls()
{
    return {
        "KVR_SetGraphicsVisible(0)",      "KVR_SetResolution(1920, 1080)",
        "KVR_SetGraphicsAlphaLevel(255)", "KVR_SetGraphicsViewport({0, 0, 1920, 1080})",
        "KVR_SetGraphicsVisible(1)",      "KVR_SetChromaKeyEnable(0)",
    };
}

void writeSplash()
{
    QPixmap splash(splashSize);
    splash.fill(Qt::green);
    QByteArray png;
    QBuffer buffer(&png);
    splash.save(&buffer, "PNG");
    writeBoxFile(HostedPlugin::pluginDirectory() + splashFile, png);
}

PluginManifest manifestWithSplash(const QUrl &homePage)
{
    PluginManifest manifest;
    manifest.homePage = homePage.toString();
    manifest.splashImage = splashFile;
    return manifest;
}

void setDisplayMode(const QByteArray &mode)
{
    writeBoxFile("/etc/settings.xml",
                 "<settings version='0.1'><system><gui_mode>" + mode + "</gui_mode></system></settings>");
}

QLabel *splash(const HostedPlugin &plugin)
{
    return plugin.application()->findChild<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
}

// The inspector has no parent.
QWebInspector *inspector()
{
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget *widget : widgets) {
        if (auto *found = qobject_cast<QWebInspector *>(widget))
            return found;
    }
    return nullptr;
}

QString pressedKeys(HostedPlugin &plugin)
{
    return plugin.evaluate("String(window.keys)").toString();
}

} // namespace

// From the launcher's first call to the destruction of the plugin's object.
class TestLifecycle : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void itStartsAfterTheLaunchersCallHasReturned();
    void aSecondStartChangesNothing();
    void thePlatformIsSetUpBeforeTheBrowser();
    void theLogTellsTheDisplayMode_data();
    void theLogTellsTheDisplayMode();
    void thePagesSizeIsThatOfTheManifest_data();
    void thePagesSizeIsThatOfTheManifest();
    void onlyModelsWithThatNameAreTranslucent_data();
    void onlyModelsWithThatNameAreTranslucent();
    void aModelThatIsNotKnownIsNotTranslucent();
    void videoShowsThroughThePage();
    void theBrowserHasTheFocus();
    void theInspectorWaitsUnseen();
    void pathsOfTheManifestAreOpened();

    void aQuickPageShowsNoSplash();
    void theSplashShowsUntilThePageIsThere();
    void aFailedPageLeavesTheSplash();
    void withoutASplashImageThereIsNoLabel();
    void aMissingSplashImageIsAnEmptyLabel();

    void f1LeavesOnce();
    void allKeysAreSwallowedAfterF1();
    void thePageCanLeave();
    void keysThatThePageLeavesGoNowhere();
    void theResizeSignalFixesTheSize();

    void destructionGivesTheGraphicsLayerBack();
    void destructionBeforeTheStartOnlyResetsTheGraphicsLayer_data();
    void destructionBeforeTheStartOnlyResetsTheGraphicsLayer();
    void destructionEndsEverything();
    void aStartThatIsDueDuringDestructionIsNone();
    void nobodyLeavesDuringDestruction();
    void pagesHearNothingOfDestruction_data();
    void pagesHearNothingOfDestruction();
    void itStartsAgainAfterDestruction();
    void programsOfTheLauncherHaveItsEnvironment_data();
    void programsOfTheLauncherHaveItsEnvironment();
};

void TestLifecycle::init()
{
    setDisplayMode("HD");
    writeSplash();
    HostedPlugin::writeManifest(PluginManifest());
    RecordingPlatform::reset();
}

void TestLifecycle::cleanup()
{
    QCOMPARE(RecordingPlatform::memoryFaults(), QByteArrayList());
}

void TestLifecycle::itStartsAfterTheLaunchersCallHasReturned()
{
    HostedPlugin plugin;
    QElapsedTimer time;
    time.start();

    plugin.application()->setFullPath(HostedPlugin::pluginDirectory());
    QCOMPARE(RecordingPlatform::calls(), QByteArrayList());
    QVERIFY(!plugin.browser());

    QTRY_VERIFY(plugin.browser());
    QVERIFY(time.elapsed() >= 9); // a timer of 10 ms may be early by a part of one
}

void TestLifecycle::aSecondStartChangesNothing()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QWebView *const browser = plugin.browser();
    RecordingPlatform::takeCalls();

    plugin.application()->setFullPath(HostedPlugin::pluginDirectory());
    QTest::qWait(100); // the start would come within 10 ms
    QCOMPARE(RecordingPlatform::takeCalls(), QByteArrayList());
    QCOMPARE(plugin.browser(), browser);
    QCOMPARE(plugin.application()->findChildren<QWebView *>().size(), 1);
}

void TestLifecycle::thePlatformIsSetUpBeforeTheBrowser()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const QByteArrayList calls = RecordingPlatform::calls();

    QCOMPARE(calls.mid(0, 3),
             QByteArrayList({"KVR_SetCurrentLayout(0)", "KVR_SetChromaKeyEnable(0)", "KVR_SetResolution(1280, 720)"}));
    // The display object's handlers come with the browser, before the model is asked for.
    const int handlers = calls.indexOf("KVR_GetEventHandler(-128, 137)");
    QVERIFY2(handlers >= 3, calls.join('\n').constData());
    QCOMPARE(calls.count("KVR_GetDeviceModel()"), 1);
    QVERIFY(calls.indexOf("KVR_GetDeviceModel()") > handlers);
}

void TestLifecycle::theLogTellsTheDisplayMode_data()
{
    QTest::addColumn<QByteArray>("mode");
    QTest::addColumn<bool>("systemwide");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("HD, own size") << QByteArray("HD") << false << QStringList{"1920", "false"};
    QTest::newRow("HD, systemwide") << QByteArray("HD") << true << QStringList{"1920", "true", "1920"};
    QTest::newRow("SD, own size") << QByteArray("SD") << false << QStringList{"1440", "false"};
    QTest::newRow("SD, systemwide") << QByteArray("SD") << true << QStringList{"1440", "true", "1440"};
}

void TestLifecycle::theLogTellsTheDisplayMode()
{
    QFETCH(QByteArray, mode);
    QFETCH(bool, systemwide);
    QFETCH(QStringList, lines);
    setDisplayMode(mode);
    PluginManifest manifest;
    if (systemwide)
        manifest.hdResolution = QSize(1920, 1080);
    HostedPlugin::writeManifest(manifest);
    const MessageLog log;
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QCOMPARE(log.debugLines().mid(0, lines.size()), lines);
    QVERIFY(log.debugLines().value(lines.size()) != "1920");
}

void TestLifecycle::thePagesSizeIsThatOfTheManifest_data()
{
    QTest::addColumn<QByteArray>("resolution");
    QTest::addColumn<QByteArray>("mode");
    QTest::addColumn<QSize>("size");

    const QByteArray systemwide = "<a type='resolution' src='systemwide'><b id='HD' width='1920' height='1080'/>"
                                  "<b id='SD' width='720' height='576'/></a>";
    QTest::newRow("own size, HD") << QByteArray("<a type='resolution' width='1280' height='720'/>") << QByteArray("HD")
                                  << QSize(1280, 720);
    QTest::newRow("own size, SD") << QByteArray("<a type='resolution' width='1280' height='720'/>") << QByteArray("SD")
                                  << QSize(1280, 720);
    QTest::newRow("systemwide, HD") << systemwide << QByteArray("HD") << QSize(1920, 1080);
    QTest::newRow("systemwide, SD") << systemwide << QByteArray("SD") << QSize(720, 576);
    QTest::newRow("malformed manifest") << QByteArray("<a type='resolution' width='1280' height='720'>")
                                        << QByteArray("HD") << QSize(1920, 1080);
    QTest::newRow("malformed manifest, SD") << systemwide + "<a>" << QByteArray("SD") << QSize(1920, 1080);
}

void TestLifecycle::thePagesSizeIsThatOfTheManifest()
{
    QFETCH(QByteArray, resolution);
    QFETCH(QByteArray, mode);
    QFETCH(QSize, size);
    setDisplayMode(mode);
    HostedPlugin::writeManifest("<plugin_config>" + resolution + "</plugin_config>");
    const MessageLog log; // the malformed manifest is warned of
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QCOMPARE(plugin.browser()->minimumSize(), size);
    QCOMPARE(plugin.browser()->maximumSize(), size);
    QVERIFY(RecordingPlatform::calls().contains("KVR_SetResolution(" + QByteArray::number(size.width()) + ", "
                                                + QByteArray::number(size.height()) + ")"));
    QCOMPARE(plugin.application()->minimumSize(), QSize(1920, 1080));
    QCOMPARE(plugin.application()->maximumSize(), QSize(1920, 1080));
}

void TestLifecycle::onlyModelsWithThatNameAreTranslucent_data()
{
    QTest::addColumn<QByteArray>("model");
    QTest::addColumn<int>("result");
    QTest::addColumn<bool>("translucent");

    QTest::newRow("the name") << QByteArray("MZ-600") << 0 << true;
    QTest::newRow("small letters") << QByteArray("mz-600") << 0 << true;
    QTest::newRow("inside a longer text") << QByteArray("Kavro Mz-600HD rev. 2") << 0 << true;
    QTest::newRow("another number") << QByteArray("MZ-412") << 0 << false;
    QTest::newRow("no hyphen") << QByteArray("MZ600") << 0 << false;
    QTest::newRow("empty") << QByteArray() << 0 << false;
    // Whatever the platform says of it, a text is a text.
    QTest::newRow("the name, with a positive result") << QByteArray("MZ-600") << 1 << true;
    QTest::newRow("the name, with a failure") << QByteArray("MZ-600") << -127 << true;
    QTest::newRow("another number, with a positive result") << QByteArray("MZ-412") << 1 << false;
}

void TestLifecycle::onlyModelsWithThatNameAreTranslucent()
{
    QFETCH(QByteArray, model);
    QFETCH(int, result);
    QFETCH(bool, translucent);
    RecordingPlatform::answer("KVR_GetDeviceModel", RecordingPlatform::Answer::text(model, result));
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QCOMPARE(plugin.application()->testAttribute(Qt::WA_TranslucentBackground), translucent);
}

void TestLifecycle::aModelThatIsNotKnownIsNotTranslucent()
{
    RecordingPlatform::answer("KVR_GetDeviceModel", -1);
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QVERIFY(!plugin.application()->testAttribute(Qt::WA_TranslucentBackground));
}

void TestLifecycle::videoShowsThroughThePage()
{
    HostedPlugin plugin;
    QCOMPARE(plugin.application()->palette().brush(QPalette::Active, QPalette::Window), QBrush(Qt::black));
    QCOMPARE(plugin.application()->palette().brush(QPalette::Inactive, QPalette::Window), QBrush(Qt::black));
    QCOMPARE(plugin.application()->palette().brush(QPalette::Disabled, QPalette::Window), QBrush(Qt::black));
    QVERIFY(plugin.start());
    QWebView *const browser = plugin.browser();

    QCOMPARE(browser->backgroundRole(), QPalette::Dark);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        QCOMPARE(browser->page()->palette().brush(group, QPalette::Base), QBrush(Qt::transparent));
    QVERIFY(!browser->testAttribute(Qt::WA_OpaquePaintEvent));

    QVERIFY(plugin.loadHtml("<div style='position: absolute; left: 0; top: 0; width: 50px; height: 50px;"
                            "background: red'></div>"));
    QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    browser->page()->mainFrame()->render(&painter, QRect(0, 0, 100, 100));
    QCOMPARE(image.pixelColor(10, 10), QColor(Qt::red));
    QCOMPARE(image.pixelColor(80, 80).alpha(), 0);
}

void TestLifecycle::theBrowserHasTheFocus()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QVERIFY(!plugin.browser()->isHidden());
    QCOMPARE(plugin.browser()->parentWidget(), plugin.application());
    QCOMPARE(plugin.browser()->pos(), QPoint(0, 0));
    plugin.application()->show();
    QCOMPARE(plugin.application()->focusWidget(), plugin.browser());
}

void TestLifecycle::theInspectorWaitsUnseen()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    plugin.application()->show();

    QVERIFY(plugin.browser()->settings()->testAttribute(QWebSettings::DeveloperExtrasEnabled));
    QVERIFY(inspector());
    QCOMPARE(inspector()->page(), plugin.browser()->page());
    QCOMPARE(inspector()->font().pixelSize(), 30);
    QVERIFY(!inspector()->parent());
    QVERIFY(!inspector()->isVisible());
}

void TestLifecycle::pathsOfTheManifestAreOpened()
{
    HttpServer server;
    server.serve("/portal?a=1", "<title>Portal</title>");
    PluginManifest manifest;
    manifest.homePage = server.url("/portal?a=1").toString();
    HostedPlugin::writeManifest(manifest);
    const MessageLog log;
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QTRY_COMPARE(plugin.browser()->title(), QString("Portal"));
    QCOMPARE(server.requestsFor("/portal?a=1").size(), 1);
    QVERIFY(log.contains("Load url:  \"" + manifest.homePage + "\""));
}

void TestLifecycle::aQuickPageShowsNoSplash()
{
    HttpServer server;
    server.serve("/", "<title>Portal</title>");
    HostedPlugin::writeManifest(manifestWithSplash(server.url()));
    QFile::remove("/etc/ssl/certs/ca-bundle.crt"); // a slow computer is busy with it for too long
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_COMPARE_WITH_TIMEOUT(plugin.browser()->title(), QString("Portal"), 400);

    QTest::qWait(700); // longer than the splash waits
    QVERIFY(!splash(plugin));
}

void TestLifecycle::theSplashShowsUntilThePageIsThere()
{
    HttpServer server;
    HttpServer::Page slow = {"<title>Portal</title>"};
    slow.pause = 50; // for each of its 21 bytes
    server.serve("/", slow);
    HostedPlugin::writeManifest(manifestWithSplash(server.url()));
    HostedPlugin plugin;
    QElapsedTimer time;
    time.start();
    QVERIFY(plugin.start());
    plugin.application()->show();

    QTRY_VERIFY(splash(plugin));
    QVERIFY(time.elapsed() >= 500);
    QPointer<QLabel> label = splash(plugin);
    QCOMPARE(label->geometry(), QRect(QPoint(0, 0), splashSize));
    QVERIFY(label->isVisible());
    QCOMPARE(label->pixmap(Qt::ReturnByValue).toImage().pixelColor(10, 10), QColor(Qt::green));
    const QObjectList &children = plugin.application()->children();
    QVERIFY(children.indexOf(label) > children.indexOf(plugin.browser())); // above it

    QVERIFY(plugin.waitForLoad());
    QTRY_VERIFY(!label);

    // A later load finds nothing to end.
    QVERIFY(plugin.load(server.url()));
    QVERIFY(!splash(plugin));
}

void TestLifecycle::aFailedPageLeavesTheSplash()
{
    HttpServer server;
    server.serve("/later", "<title>Later</title>");
    HttpServer gone;
    gone.refuse();
    HostedPlugin::writeManifest(manifestWithSplash(gone.url()));
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QTRY_VERIFY(splash(plugin));
    QPointer<QLabel> label = splash(plugin);

    QVERIFY(plugin.waitForLoad()); // the next failure
    QCOMPARE(splash(plugin), label.data());
    QVERIFY(!label->isHidden());

    QVERIFY(plugin.load(server.url("/later")));
    QTRY_VERIFY(!label);
}

void TestLifecycle::withoutASplashImageThereIsNoLabel()
{
    HttpServer server;
    server.fallSilent();
    PluginManifest manifest;
    manifest.homePage = server.url().toString();
    manifest.splashImage = "";
    HostedPlugin::writeManifest(manifest);
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QTest::qWait(700); // longer than the splash waits
    QVERIFY(!splash(plugin));
}

void TestLifecycle::aMissingSplashImageIsAnEmptyLabel()
{
    HttpServer server;
    server.fallSilent();
    HostedPlugin::writeManifest(manifestWithSplash(server.url()));
    QFile::remove(fromOutside(HostedPlugin::pluginDirectory() + splashFile));
    const MessageLog log;
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QTRY_VERIFY(splash(plugin));
    QVERIFY(splash(plugin)->pixmap(Qt::ReturnByValue).isNull());
    QCOMPARE(log.warnings(), QStringList());
}

void TestLifecycle::f1LeavesOnce()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const QSignalSpy exits(plugin.application(), &CStbApplication::exit);
    const QSignalSpy cabinets(plugin.application(), &CStbApplication::loadPersonalCabinet);

    QTest::keyRelease(plugin.browser(), Qt::Key_F1);
    QCOMPARE(exits.size(), 0);
    QTest::keyPress(plugin.browser(), Qt::Key_F1);
    QCOMPARE(exits.size(), 1);
    QTest::keyPress(plugin.browser(), Qt::Key_F1);
    QTest::keyPress(plugin.application(), Qt::Key_F1);
    QCOMPARE(exits.size(), 1);
    QCOMPARE(cabinets.size(), 0);
    QVERIFY(plugin.browser()); // nothing is destroyed yet
}

void TestLifecycle::allKeysAreSwallowedAfterF1()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("<script>window.keys = [];"
                            "document.onkeydown = function (event) { keys.push('down ' + event.keyCode); };"
                            "document.onkeyup = function (event) { keys.push('up ' + event.keyCode); };</script>"));
    QTest::keyClick(plugin.browser(), Qt::Key_A);
    QTest::keyClick(plugin.browser(), Qt::Key_F2);
    QCOMPARE(pressedKeys(plugin), QString("down 65,up 65,down 113,up 113"));

    QTest::keyClick(plugin.browser(), Qt::Key_F1);
    // Only presses are swallowed.
    QCOMPARE(pressedKeys(plugin), QString("down 65,up 65,down 113,up 113,up 112"));
    QTest::keyPress(plugin.browser(), Qt::Key_B);
    QLineEdit other; // wherever in the process
    QTest::keyPress(&other, Qt::Key_B);
    QCOMPARE(other.text(), QString());
    QCOMPARE(pressedKeys(plugin), QString("down 65,up 65,down 113,up 113,up 112"));

    plugin.destroy();
    QTest::keyPress(&other, Qt::Key_B);
    QCOMPARE(other.text(), QString("b"));
}

void TestLifecycle::thePageCanLeave()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));
    const QSignalSpy exits(plugin.application(), &CStbApplication::exit);

    plugin.evaluate("StbDisplay.ExitToMenu()");
    QTRY_COMPARE(exits.size(), 1);
    QTest::keyPress(plugin.browser(), Qt::Key_F1);
    QCOMPARE(exits.size(), 1);
}

void TestLifecycle::keysThatThePageLeavesGoNowhere()
{
    QWidget window; // of the launcher
    class : public QObject
    {
    public:
        bool eventFilter(QObject *, QEvent *event) override
        {
            keys += event->type() == QEvent::KeyPress;
            return false;
        }
        int keys = 0;
    } watch;
    window.installEventFilter(&watch);
    HostedPlugin plugin;
    plugin.application()->setParent(&window);
    QVERIFY(plugin.start());

    QTest::keyPress(plugin.application(), Qt::Key_Escape);
    QCOMPARE(watch.keys, 0);
    QTest::keyPress(&window, Qt::Key_Escape);
    QCOMPARE(watch.keys, 1);
    plugin.destroy();
}

void TestLifecycle::theResizeSignalFixesTheSize()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());

    QVERIFY(QMetaObject::invokeMethod(plugin.application(), "resize", Q_ARG(QSize, QSize(720, 576))));
    QCOMPARE(plugin.application()->minimumSize(), QSize(720, 576));
    QCOMPARE(plugin.application()->maximumSize(), QSize(720, 576));
    QCOMPARE(plugin.browser()->size(), QSize(1280, 720));
}

void TestLifecycle::destructionGivesTheGraphicsLayerBack()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));
    const int player = plugin.evaluate("StbMedia.CreatePlayer()").toInt();
    QSignalSpy sizes(plugin.application(), SIGNAL(resize(QSize)));
    RecordingPlatform::takeCalls();

    plugin.destroy();

    // After what the script objects do at their end.
    const QByteArrayList calls = RecordingPlatform::calls();
    QCOMPARE(calls.mid(calls.size() - resetCalls().size()), resetCalls());
    const int objects = calls.size() - resetCalls().size();
    const int close = calls.indexOf("KVR_ClosePlayer(" + QByteArray::number(player) + ")");
    QVERIFY(close >= 0 && close < objects);
    const int handler = calls.indexOf("KVR_DeleteEventHandler(-128, 137)");
    QVERIFY(handler > close && handler < objects); // media before display
    QCOMPARE(sizes, QList<QVariantList>{{QSize(1920, 1080)}});
}

void TestLifecycle::destructionBeforeTheStartOnlyResetsTheGraphicsLayer_data()
{
    QTest::addColumn<bool>("pathIsSet");

    QTest::newRow("before the path is told") << false;
    QTest::newRow("after it, before the start") << true;
}

void TestLifecycle::destructionBeforeTheStartOnlyResetsTheGraphicsLayer()
{
    QFETCH(bool, pathIsSet);
    HostedPlugin plugin;
    QCOMPARE(plugin.application()->appName(), QString("JS Browser"));
    if (pathIsSet)
        plugin.application()->setFullPath(HostedPlugin::pluginDirectory());

    plugin.destroy();
    QTest::qWait(20); // longer than the start waits
    QCOMPARE(RecordingPlatform::calls(), resetCalls());
}

void TestLifecycle::destructionEndsEverything()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QWebSettings::globalSettings()->setAttribute(QWebSettings::LocalStorageEnabled, true);
    const QPointer<QWebView> browser = plugin.browser();
    const QPointer<QWebInspector> webInspector = inspector();
    QVERIFY(browser && webInspector);

    plugin.destroy();
    QVERIFY(!browser);
    QVERIFY(!webInspector);
    QVERIFY(!QWebSettings::globalSettings()->testAttribute(QWebSettings::LocalStorageEnabled));
}

void TestLifecycle::aStartThatIsDueDuringDestructionIsNone()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    plugin.application()->setFullPath(HostedPlugin::pluginDirectory());
    QThread::msleep(50); // longer than it waits
    RecordingPlatform::takeCalls();

    plugin.destroy();
    QVERIFY(!RecordingPlatform::takeCalls().contains("KVR_SetCurrentLayout(0)"));
}

void TestLifecycle::nobodyLeavesDuringDestruction()
{
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    const QSignalSpy left(plugin.application(), &CStbApplication::exit);
    QCoreApplication::postEvent(plugin.browser(), new QKeyEvent(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier));

    plugin.destroy();
    QCOMPARE(left.size(), 0);
}

void TestLifecycle::pagesHearNothingOfDestruction_data()
{
    QTest::addColumn<QString>("listener");
    QTest::newRow("function") << "function () { StbDisplay.Log('gone'); }";
    QTest::newRow("method of another object") << "StbDisplay.GetHdmiState";
    QTest::newRow("method of the object") << "StbPVR.CleanUpRecords";
    QTest::newRow("signal") << "StbMedia.jsCallback";
}

void TestLifecycle::pagesHearNothingOfDestruction()
{
    QFETCH(QString, listener);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("Portal"));
    QCOMPARE(plugin.evaluateToJson("[StbMedia, StbDisplay, StbPVR, stb_media, stb_display].forEach(function (object) {"
                                   "object.destroyed.connect("
                                   + listener + "); })"),
             QString("undefined"));
    plugin.destroy();
}

void TestLifecycle::itStartsAgainAfterDestruction()
{
    for (const char *name : {"first", "second"}) {
        PluginManifest manifest;
        manifest.briefDescription = name;
        HostedPlugin::writeManifest(manifest);
        HostedPlugin plugin;
        QVERIFY(plugin.start());
        QCOMPARE(plugin.application()->appName(), QString(name));
        QVERIFY(plugin.loadHtml("Portal"));
        QCOMPARE(plugin.evaluateToJson("typeof StbDisplay.ExitToMenu"), QString("\"function\""));
    }
}

void TestLifecycle::programsOfTheLauncherHaveItsEnvironment_data()
{
    QTest::addColumn<QByteArray>("value");

    QTest::newRow("unset") << QByteArray();
    QTest::newRow("set by the launcher") << QByteArray("1");
}

void TestLifecycle::programsOfTheLauncherHaveItsEnvironment()
{
    QFETCH(QByteArray, value);
    const char variable[] = "JSC_useTailCalls"; // the plugin has the engine do without
    const QByteArray former = qgetenv(variable);
    if (value.isNull())
        qunsetenv(variable);
    else
        qputenv(variable, value);
    {
        HostedPlugin plugin;
        QVERIFY(plugin.start());
        QCOMPARE(qgetenv(variable), value);
        QCOMPARE(qEnvironmentVariableIsSet(variable), !value.isNull());
    }
    if (former.isNull())
        qunsetenv(variable);
    else
        qputenv(variable, former);
}

QTEST_MAIN(TestLifecycle)
#include "tst_lifecycle.moc"
