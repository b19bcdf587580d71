// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/bridge/EventNotifier.h"
#include "tests/platform/RecordingPlatform.h"
#include "tests/support/BoxFile.h"
#include "tests/support/HostedPlugin.h"
#include "tests/support/MessageLog.h"
#include "tests/support/OddFile.h"

#include <QImageReader>
#include <QWebView>
#include <QtTest>

#include <cstring>

namespace {

// A method as it stands in the meta-object, such as "private slot doFixedSize(QSize)".
QString text(const QMetaMethod &method)
{
    static const char *const access[] = {"private", "protected", "public"};
    static const char *const types[] = {"method", "signal", "slot", "constructor"};
    QStringList parameters;
    for (int i = 0; i < method.parameterCount(); ++i)
        parameters += (method.parameterTypes().at(i) + ' ' + method.parameterNames().at(i)).trimmed();
    const QString result = qstrcmp(method.typeName(), "void") == 0 ? QString() : QString(method.typeName()) + ' ';
    return QString("%1 %2 %3%4(%5)")
        .arg(access[method.access()], types[method.methodType()], result, method.name(), parameters.join(", "));
}

// The methods that a class adds to those of its base, in their order.
QStringList ownMethods(const QMetaObject *object)
{
    QStringList methods;
    for (int i = object->methodOffset(); i < object->methodCount(); ++i)
        methods += text(object->method(i));
    return methods;
}

// Where a virtual function stands in its class's table, as the platform's C++ ABI writes it into a pointer to member.
template <typename Member>
int virtualSlot(Member member)
{
    std::ptrdiff_t words[2];
    static_assert(sizeof words == sizeof member);
    std::memcpy(words, &member, sizeof words);
    return int((words[0] - 1) / std::ptrdiff_t(sizeof(void *)));
}

QByteArray png(const QSize &size, Qt::GlobalColor color)
{
    QPixmap picture(size);
    picture.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    picture.save(&buffer, "PNG");
    return bytes;
}

QImage picture(const QPixmap &pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
}

// Translates the texts of one class by putting them in brackets.
class Brackets : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *source, const char *, int) const override
    {
        return qstrcmp(context, "PluginWrapper") == 0 ? QString("<%1>").arg(source) : QString();
    }
};

// A plugin of the launcher's that says no more than it must.
class PlainPlugin : public StbInterface
{
public:
    int type() override { return 1; }
    QString relativePath() const override { return QString(); }
    QString pluginVersion() const override { return QString(); }
    QString vcsVersion() const override { return QString(); }
    QString compilationTime() const override { return QString(); }
};

} // namespace

// What the launcher asks the plugin's object, and the meta-objects that are part of its interface.
class TestPluginObject : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theInterfacesKeepTheirOrder();
    void theInterfaceHasAnswersOfItsOwn();
    void itAnswersToItsClassAndItsInterface_data();
    void itAnswersToItsClassAndItsInterface();
    void theMetaObjectsAreAsDocumented_data();
    void theMetaObjectsAreAsDocumented();
    void itTellsWhatIsFixed();
    void theTimeOfTheBuildIsATimeAndADate();
    void withoutAManifestItHasTextsAndIconsOfItsOwn();
    void itsOwnTextsAreTranslated();
    void theManifestGivesTextsAndIcons();
    void anIconThatTheManifestNamesInVainIsEmpty();
    void anIconThatIsOddIsEmpty_data();
    void anIconThatIsOddIsEmpty();
    void anEmptyEntryIsNoEntry();
    void standardDefinitionIsWhatTheManifestSays_data();
    void standardDefinitionIsWhatTheManifestSays();
    void aMalformedManifestIsWarnedOf_data();
    void aMalformedManifestIsWarnedOf();
    void theNotifierHandsOnWhatItIsTold();
};

void TestPluginObject::init()
{
    HostedPlugin::writeManifest(PluginManifest());
}

void TestPluginObject::theInterfacesKeepTheirOrder()
{
    // The destructor takes the first two places.
    QCOMPARE(virtualSlot(&StbInterface::type), 2);
    QCOMPARE(virtualSlot(&StbInterface::relativePath), 3);
    QCOMPARE(virtualSlot(&StbInterface::setFullPath), 4);
    QCOMPARE(virtualSlot(&StbInterface::pluginVersion), 5);
    QCOMPARE(virtualSlot(&StbInterface::vcsVersion), 6);
    QCOMPARE(virtualSlot(&StbInterface::compilationTime), 7);
    QCOMPARE(virtualSlot(&StbInterface::supportsSD), 8);
    QCOMPARE(virtualSlot(&StbInterface::needPassword), 9);

    const int type = virtualSlot(&CStbApplication::type);
    QCOMPARE(virtualSlot(&CStbApplication::appName), type + 1);
    QCOMPARE(virtualSlot(&CStbApplication::appDescription), type + 2);
    QCOMPARE(virtualSlot(&CStbApplication::appLogo), type + 3);
    QCOMPARE(virtualSlot(&CStbApplication::appLogoSmall), type + 4);

    // The widget is the first base.
    HostedPlugin host;
    QCOMPARE(static_cast<void *>(static_cast<QWidget *>(host.application())), static_cast<void *>(host.application()));
}

void TestPluginObject::theInterfaceHasAnswersOfItsOwn()
{
    PlainPlugin plugin;
    plugin.setFullPath("/"); // starts nothing
    QVERIFY(!plugin.supportsSD());
    QVERIFY(plugin.needPassword());
}

void TestPluginObject::itAnswersToItsClassAndItsInterface_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("part");

    QTest::newRow("class") << QByteArray("PluginWrapper") << "object";
    QTest::newRow("base") << QByteArray("CStbApplication") << "object";
    QTest::newRow("widget") << QByteArray("QWidget") << "object";
    QTest::newRow("object") << QByteArray("QObject") << "object";
    QTest::newRow("interface") << QByteArray("StbInterface") << "interface";
    QTest::newRow("interface id") << QByteArray("com.Kavro.Plugin.StbInterface/2.0") << "interface";
    QTest::newRow("another version") << QByteArray("com.Kavro.Plugin.StbInterface/1.0") << "nothing";
    QTest::newRow("another class") << QByteArray("QWebView") << "nothing";
}

void TestPluginObject::itAnswersToItsClassAndItsInterface()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, part);
    HostedPlugin host;
    CStbApplication *const application = host.application();
    const void *answer = application->qt_metacast(name);

    QCOMPARE(answer == application, part == "object");
    QCOMPARE(answer == static_cast<StbInterface *>(application), part == "interface");
    QCOMPARE(answer == nullptr, part == "nothing");
}

void TestPluginObject::theMetaObjectsAreAsDocumented_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("base");
    QTest::addColumn<QStringList>("methods");

    QTest::newRow("application") << QByteArray("CStbApplication") << QByteArray("QWidget")
                                 << QStringList{
                                        "public signal loadPersonalCabinet(QString params)",
                                        "public signal exit()",
                                    };
    QTest::newRow("plugin") << QByteArray("PluginWrapper") << QByteArray("CStbApplication")
                            << QStringList{
                                   "public signal resize(QSize size)",         "private slot runApplication()",
                                   "private slot shutdownApplication()",       "private slot doFixedSize(QSize)",
                                   "private slot onPageLoadFinished(bool ok)", "private slot showSplash()",
                               };
    QTest::newRow("browser") << QByteArray("KavroStbBrowser") << QByteArray("QWebView")
                             << QStringList{
                                    "private slot reloadPage()",
                                    "private slot closeBrowser()",
                                    "private slot newUrl()",
                                    "private slot goToUrl()",
                                    "private slot loadErrorPage()",
                                    "private slot populateJavaScriptWindowObject()",
                                    "private slot evaluateEvent(int, int)",
                                    "private slot setJsCallback(QString)",
                                    "private slot pageLoaded(bool isLoaded)",
                                    "private slot changeKeyDelay(int)",
                                    "private slot showCursor()",
                                    "private slot checkDebugFile()",
                                    "private slot sslErrorHandler(QNetworkReply*, QList<QSslError>)",
                                    "private slot onLoadProgress()",
                                };
    QTest::newRow("network") << QByteArray("StbWebNam") << QByteArray("QNetworkAccessManager") << QStringList();
    QTest::newRow("notifier") << QByteArray("EventNotifier") << QByteArray("QObject")
                              << QStringList{"public signal eventOccured(int, int)"};
    // It has no meta-object of its own.
    QTest::newRow("page") << QByteArray("QWebPage") << QByteArray("QObject") << QStringList("not asked");
}

void TestPluginObject::theMetaObjectsAreAsDocumented()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, base);
    QFETCH(QStringList, methods);
    HostedPlugin host;
    QVERIFY(host.start());
    const QHash<QByteArray, const QMetaObject *> objects = {
        {"CStbApplication", host.application()->metaObject()->superClass()},
        {"PluginWrapper", host.application()->metaObject()},
        {"KavroStbBrowser", host.browser()->metaObject()},
        {"StbWebNam", host.browser()->page()->networkAccessManager()->metaObject()},
        {"EventNotifier", &EventNotifier::staticMetaObject},
        {"QWebPage", host.browser()->page()->metaObject()},
    };
    const QMetaObject *const object = objects.value(name);

    QCOMPARE(QByteArray(object->className()), name);
    QCOMPARE(QByteArray(object->superClass()->className()), base);
    if (methods == QStringList("not asked"))
        return;
    QCOMPARE(ownMethods(object), methods);
    QCOMPARE(object->propertyCount(), object->propertyOffset());
    QCOMPARE(object->enumeratorCount(), object->enumeratorOffset());
    QCOMPARE(object->constructorCount(), 0);
}

void TestPluginObject::itTellsWhatIsFixed()
{
    HostedPlugin host;
    StbInterface *const plugin = host.application();

    QCOMPARE(plugin->type(), 1);
    QCOMPARE(plugin->relativePath(), QString("stbbrowser/"));
    QCOMPARE(plugin->pluginVersion(), QString("1.1.4"));
    QVERIFY(plugin->needPassword());
    static const QRegularExpression revision("^[0-9a-f]{40}$");
    QVERIFY2(revision.match(plugin->vcsVersion()).hasMatch(), qPrintable(plugin->vcsVersion()));
}

void TestPluginObject::theTimeOfTheBuildIsATimeAndADate()
{
    HostedPlugin host;
    const QString time = host.application()->compilationTime();

    // The day has two places: a blank stands before one of one digit.
    static const QRegularExpression form("^\\d\\d:\\d\\d:\\d\\d [A-Z][a-z]{2} [ \\d]\\d \\d{4}$");
    QVERIFY2(form.match(time).hasMatch(), qPrintable(time));
    const QDateTime built = QLocale::c().toDateTime(QString(time).replace("  ", " "), "HH:mm:ss MMM d yyyy");
    QVERIFY2(built.isValid() && built <= QDateTime::currentDateTime(), qPrintable(time));
}

void TestPluginObject::withoutAManifestItHasTextsAndIconsOfItsOwn()
{
    HostedPlugin host; // not told its folder yet, so without any manifest
    CStbApplication *const application = host.application();

    QCOMPARE(application->appName(), QString("JS Browser"));
    QCOMPARE(application->appDescription(), QString("Middleware browser"));
    QVERIFY(!application->supportsSD());
    QCOMPARE(QDir(":/images").entryList(), QStringList({"kavrostbbrowser_b.png", "kavrostbbrowser_s.png"}));
    QVERIFY(!application->appLogo().isNull());
    QVERIFY(!application->appLogoSmall().isNull());
    QCOMPARE(picture(application->appLogo()), picture(QPixmap(":/images/kavrostbbrowser_b.png")));
    QCOMPARE(picture(application->appLogoSmall()), picture(QPixmap(":/images/kavrostbbrowser_s.png")));
    QVERIFY(application->appLogo().width() > application->appLogoSmall().width());
    QCOMPARE(QImageReader(":/images/kavrostbbrowser_b.png").format(), QByteArray("png"));
    QCOMPARE(QImageReader(":/images/kavrostbbrowser_s.png").format(), QByteArray("png"));
}

void TestPluginObject::itsOwnTextsAreTranslated()
{
    Brackets translator;
    QCoreApplication::installTranslator(&translator);
    HostedPlugin host;

    QCOMPARE(host.application()->appName(), QString("<JS Browser>"));
    QCOMPARE(host.application()->appDescription(), QString("<Middleware browser>"));
    QCoreApplication::removeTranslator(&translator);
}

void TestPluginObject::theManifestGivesTextsAndIcons()
{
    PluginManifest manifest;
    manifest.briefDescription = QString::fromUtf8("\xd0\xa2\xd0\x92");
    manifest.longDescription = "All television";
    manifest.bigIcon = "icons/big.png";
    manifest.smallIcon = "/mnt/stb/small.png";
    HostedPlugin::writeManifest(manifest);
    writeBoxFile(HostedPlugin::pluginDirectory() + "icons/big.png", png(QSize(30, 20), Qt::red));
    writeBoxFile("/mnt/stb/small.png", png(QSize(12, 10), Qt::blue));
    HostedPlugin host;
    CStbApplication *const application = host.application();
    application->setFullPath(HostedPlugin::pluginDirectory());

    QCOMPARE(application->appName(), manifest.briefDescription);
    QCOMPARE(application->appDescription(), manifest.longDescription);
    QCOMPARE(application->appLogo().size(), QSize(30, 20));
    QCOMPARE(application->appLogo().toImage().pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(application->appLogoSmall().size(), QSize(12, 10));
    QCOMPARE(application->appLogoSmall().toImage().pixelColor(0, 0), QColor(Qt::blue));
}

void TestPluginObject::anIconThatIsOddIsEmpty_data()
{
    QTest::addColumn<int>("kind");
    for (const OddFile::Row &row : OddFile::all)
        QTest::newRow(row.name) << int(row.kind);
}

void TestPluginObject::anIconThatIsOddIsEmpty()
{
    QFETCH(const int, kind);
    PluginManifest manifest;
    manifest.bigIcon = "/mnt/stb/odd.png";
    HostedPlugin::writeManifest(manifest);
    QVERIFY(OddFile::put("/mnt/stb/odd.png", OddFile::Kind(kind)));
    HostedPlugin host;
    host.application()->setFullPath(HostedPlugin::pluginDirectory());

    const MessageLog log;
    QVERIFY(host.application()->appLogo().isNull());
    QCOMPARE(log.warnings().filter("/mnt/stb/odd.png is ").size(), 1);
}

void TestPluginObject::anIconThatTheManifestNamesInVainIsEmpty()
{
    PluginManifest manifest;
    manifest.bigIcon = "nothing.png";
    manifest.smallIcon = "nothing.png";
    HostedPlugin::writeManifest(manifest);
    HostedPlugin host;
    host.application()->setFullPath(HostedPlugin::pluginDirectory());

    QVERIFY(host.application()->appLogo().isNull());
    QVERIFY(host.application()->appLogoSmall().isNull());
}

void TestPluginObject::anEmptyEntryIsNoEntry()
{
    PluginManifest manifest;
    manifest.briefDescription = "";
    manifest.longDescription = "";
    manifest.bigIcon = "";
    manifest.smallIcon = "";
    HostedPlugin::writeManifest(manifest);
    HostedPlugin host;
    CStbApplication *const application = host.application();
    application->setFullPath(HostedPlugin::pluginDirectory());

    QCOMPARE(application->appName(), QString("JS Browser"));
    QCOMPARE(application->appDescription(), QString("Middleware browser"));
    QCOMPARE(picture(application->appLogo()), picture(QPixmap(":/images/kavrostbbrowser_b.png")));
    QCOMPARE(picture(application->appLogoSmall()), picture(QPixmap(":/images/kavrostbbrowser_s.png")));
}

void TestPluginObject::standardDefinitionIsWhatTheManifestSays_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("supported");

    QTest::newRow("true") << QByteArray("true") << true;
    QTest::newRow("another case") << QByteArray("TRUE") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void TestPluginObject::standardDefinitionIsWhatTheManifestSays()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, supported);
    HostedPlugin::writeManifest("<plugin_config><a type='supports_sd' val='" + value + "'/></plugin_config>");
    HostedPlugin host;
    host.application()->setFullPath(HostedPlugin::pluginDirectory());

    QCOMPARE(host.application()->supportsSD(), supported);
}

void TestPluginObject::aMalformedManifestIsWarnedOf_data()
{
    QTest::addColumn<QByteArray>("manifest");
    QTest::addColumn<QStringList>("warnings");

    QTest::newRow("well-formed") << QByteArray("<plugin_config/>") << QStringList();
    QTest::newRow("malformed") << QByteArray("<plugin_config>") << QStringList("Malformed Manifest");
    QTest::newRow("missing") << QByteArray() << QStringList("Malformed Manifest");
}

void TestPluginObject::aMalformedManifestIsWarnedOf()
{
    QFETCH(QByteArray, manifest);
    QFETCH(QStringList, warnings);
    if (manifest.isEmpty())
        HostedPlugin::removeManifest();
    else
        HostedPlugin::writeManifest(manifest);
    HostedPlugin host;
    const MessageLog log;
    host.application()->setFullPath(HostedPlugin::pluginDirectory());

    QCOMPARE(log.warnings(), warnings);
}

void TestPluginObject::theNotifierHandsOnWhatItIsTold()
{
    EventNotifier *const notifier = EventNotifier::instance();
    QCOMPARE(EventNotifier::instance(), notifier);
    QVERIFY(!notifier->parent());
    QSignalSpy events(notifier, &EventNotifier::eventOccured);

    notifier->notifyEvent(-128, 137);
    QCOMPARE(events, (QList<QVariantList>{{-128, 137}}));
}

QTEST_MAIN(TestPluginObject)
#include "tst_pluginobject.moc"
