// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptObjectFinder.h"
#include "tests/support/HostedPlugin.h"

#include "shell/CStbApplication.h"

#include <QFile>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QtTest>
#include <memory>

namespace {

const char *const mediaSlotsInOrder[] = {
    "int CreatePlayer()",
    "int ClosePlayer(int id)",
    "int GetPlayersCount()",
    "int PlayFile(int id, QString path, qlonglong pos, qlonglong duration, double fps, QString subt)",
    "int PlayStream(int id, QString path)",
    "int PlayHttp(int id, QString path, QString opt)",
    "int PlayRtsp(int id, QString path, int mode)",
    ("int PlayMagnet(int id, QString magnet, QString name, qlonglong size, qlonglong pos, qlonglong duration, "
     "double fps)"),
    "int Pause(int id)",
    "int Stop(int id)",
    "int Continue(int id)",
    "int NextFrame(int id)",
    "int SetPosition(int id, qlonglong pos)",
    "qlonglong GetPosition(int id)",
    "qlonglong GetDuration(int id)",
    "int SetSpeed(int id, int speed)",
    "int GetSpeed(int id)",
    "int GetVideoPid(int id)",
    "QString GetVideoTrackList(int id)",
    "int SetAudioPid(int id, int pid)",
    "int GetAudioPid(int id)",
    "QString GetAudioTrackList(int id)",
    "int SetSubtitlePid(int id, int pid)",
    "int GetSubtitlePid(int id)",
    "QString GetSubtitleTrackList(int id)",
    "int SetSubtitlesVisible(int id, int visibility)",
    "int IsSubtitlesVisible(int playerInstance)",
    "int SetVolume(int id, int vol)",
    "int GetVolume(int id)",
    "int IsMute(int id)",
    "int SetMute(int id, int mute)",
    "double GetZoom(int id)",
    "int SetZoom(int id, double zoom)",
    "double GetFps(int id)",
    "int SetPlayerViewPort(int id, int x, int y, int w, int h)",
    "QString GetPlayerViewPort(int id)",
    "int SetPlayerAlphaLevel(int id, int alpha)",
    "int GetPlayerAlphaLevel(int id)",
    "int SetPlayerVisible(int id, int visibility)",
    "int IsPlayerVisible(int id)",
    "int GetPlayerDisplayMode(int id)",
    "int SetPlayerDisplayMode(int id, int mode)",
    "int GetPlayerState(int id)",
    "QString GetLastMulticastEvent(int id)",
    "QString getEventDescription()",
};

const char *const displaySlotsInOrder[] = {
    "int setStb_displaytimeZone()",
    "int setGraphicsViewport(int, int, int, int)",
    "QString getGraphicsViewport()",
    "int setGraphicsVisible(int)",
    "int isGraphicsVisible()",
    "int setAlphaLevel(uint)",
    "int getAlphaLevel()",
    "int SetBootParamValue(QString key, QString value)",
    "QString GetBootParamValue(QString key)",
    "int SyncBootParams()",
    "int setChromaKey(int color)",
    "int getChromaKey()",
    "int isChromaKeyEnable()",
    "int setChromaKeyEnable(int)",
    "int setCurrentRMLayout(int)",
    "int getCurrentRMLayout()",
    "int switchToNextRMLayout()",
    "int UpgradeFirmware(QString url)",
    "QString ListFiles(QString dir)",
    "QString ListDirs(QString dir)",
    "int IsOutportsEnabled()",
    "int reboot()",
    "int debug(QString debug)",
    "int log(QString log)",
    "int ntpUpdate()",
    "int setMediaStatus()",
    "int standby()",
};

const char *const displayPropertiesInOrder[] = {
    "browserVersion", "timeZone", "macaddr", "netip",           "mode",
    "model",          "cpuname",  "cpufreq", "FirmwareVersion", "SerialNumber"};

template <std::size_t size>
QStringList list(const char *const (&texts)[size])
{
    QStringList result;
    std::copy(std::begin(texts), std::end(texts), std::back_inserter(result));
    return result;
}

QString declaration(const QMetaMethod &method)
{
    QStringList parameters;
    for (int i = 0; i < method.parameterCount(); ++i)
        parameters += QString(method.parameterTypes().at(i) + ' ' + method.parameterNames().at(i)).trimmed();
    return QString("%1 %2(%3)").arg(method.typeName(), QString(method.name()), parameters.join(", "));
}

// A class's own methods of one kind, in their order.
QStringList declarations(const QMetaObject *metaObject, QMetaMethod::MethodType type)
{
    QStringList result;
    for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i) {
        if (metaObject->method(i).methodType() == type)
            result += declaration(metaObject->method(i));
    }
    return result;
}

// "Name/2" of "int Name(int id, int pid)" or "Name(id, pid)". Not all parameters have names that all could agree on.
QString nameAndArity(const QString &method)
{
    const QString parameters = method.section('(', 1).section(')', 0, 0);
    const int count = parameters.isEmpty() ? 0 : parameters.count(',') + 1;
    return QString("%1/%2").arg(method.section('(', 0, 0).section(' ', -1)).arg(count);
}

QStringList namesAndArities(QStringList methods)
{
    std::transform(methods.begin(), methods.end(), methods.begin(), nameAndArity);
    return methods;
}

// The text of an object's reference; empty if it cannot be read.
QString reference(const QString &object)
{
    QFile file(QCoreApplication::applicationDirPath() + "/docs/api/" + object + ".md");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

// The deprecated objects as the toolkit describes them, in the shipped plugin, and as their references do.
class TestDeprecatedMetaObjects : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void classesHaveTheirNames();
    void slotsAreTheseInThisOrder();
    void mediaHasItsSignalFirst();
    void displayHasNoSignals();
    void mediaHasOneWritableProperty();
    void displayHasTheseReadOnlyProperties();
    void pagesSeeTheMembersInThisOrder();
    void referencesHaveEachMethodOnce_data();
    void referencesHaveEachMethodOnce();
    void referencesNameNothingElse_data();
    void referencesNameNothingElse();
    void theReferenceHasEachProperty();

private:
    const QMetaObject *metaObjectOf(const char *scriptName, const char *className);

    std::unique_ptr<HostedPlugin> m_plugin;
    const QMetaObject *m_media = nullptr;
    const QMetaObject *m_display = nullptr;
};

const QMetaObject *TestDeprecatedMetaObjects::metaObjectOf(const char *scriptName, const char *className)
{
    const ScriptObjectFinder finder(className);
    m_plugin->evaluate(QString(scriptName) + ".deleteLater()");
    return QTest::qWaitFor([&] { return finder.found(); }) ? finder.found()->metaObject() : nullptr;
}

void TestDeprecatedMetaObjects::initTestCase()
{
    HostedPlugin::writeManifest(PluginManifest());
    m_plugin = std::make_unique<HostedPlugin>();
    QVERIFY(m_plugin->start());
    QVERIFY(m_plugin->loadHtml("<!DOCTYPE html><title>Old</title>"));
    m_media = metaObjectOf("stb_media", "KavroJSDeprecated::stb_media");
    m_display = metaObjectOf("stb_display", "KavroJSDeprecated::stb_display");
    QVERIFY(m_media);
    QVERIFY(m_display);
}

void TestDeprecatedMetaObjects::cleanupTestCase()
{
    m_plugin.reset();
}

void TestDeprecatedMetaObjects::classesHaveTheirNames()
{
    QCOMPARE(m_media->superClass(), &QObject::staticMetaObject);
    QCOMPARE(m_display->superClass(), &QObject::staticMetaObject);
    QCOMPARE(m_plugin->evaluate("String(stb_media)"), QVariant("KavroJSDeprecated::stb_media(name = \"\")"));
    QCOMPARE(m_plugin->evaluate("String(stb_display)"), QVariant("KavroJSDeprecated::stb_display(name = \"\")"));
}

void TestDeprecatedMetaObjects::slotsAreTheseInThisOrder()
{
    QCOMPARE(declarations(m_media, QMetaMethod::Slot), list(mediaSlotsInOrder));
    QCOMPARE(declarations(m_display, QMetaMethod::Slot), list(displaySlotsInOrder));
    QCOMPARE(int(std::size(mediaSlotsInOrder)), 45);
    QCOMPARE(int(std::size(displaySlotsInOrder)), 27);
    for (const QMetaObject *metaObject : {m_media, m_display}) {
        for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i)
            QCOMPARE(metaObject->method(i).access(), QMetaMethod::Public);
    }
}

void TestDeprecatedMetaObjects::mediaHasItsSignalFirst()
{
    QCOMPARE(declaration(m_media->method(m_media->methodOffset())), QString("int jsCallback(QString jsCode)"));
    QCOMPARE(declarations(m_media, QMetaMethod::Signal).size(), 1);
    QCOMPARE(m_media->methodCount() - m_media->methodOffset(), 1 + 45);
}

void TestDeprecatedMetaObjects::displayHasNoSignals()
{
    QCOMPARE(m_display->methodCount() - m_display->methodOffset(), 27);
}

void TestDeprecatedMetaObjects::mediaHasOneWritableProperty()
{
    QCOMPARE(m_media->propertyCount() - m_media->propertyOffset(), 1);
    const QMetaProperty property = m_media->property(m_media->propertyOffset());
    QCOMPARE(QByteArray(property.name()), QByteArray("onEvent"));
    QCOMPARE(QByteArray(property.typeName()), QByteArray("QString"));
    QVERIFY(property.isReadable() && property.isWritable() && property.isScriptable());
    QVERIFY(!property.hasNotifySignal() && !property.isConstant());
}

void TestDeprecatedMetaObjects::displayHasTheseReadOnlyProperties()
{
    QStringList names;
    for (int i = m_display->propertyOffset(); i < m_display->propertyCount(); ++i) {
        const QMetaProperty property = m_display->property(i);
        names += property.name();
        QCOMPARE(QByteArray(property.typeName()), QByteArray("QString"));
        QVERIFY(property.isReadable() && property.isScriptable());
        QVERIFY(!property.isWritable() && !property.isResettable() && !property.hasNotifySignal());
        QVERIFY(!property.isConstant());
    }
    QCOMPARE(names, list(displayPropertiesInOrder));
}

void TestDeprecatedMetaObjects::pagesSeeTheMembersInThisOrder()
{
    const auto members = [this](const QString &object) {
        return namesAndArities(m_plugin->evaluate("Object.keys(" + object + ")").toStringList());
    };
    QCOMPARE(members("stb_media").mid(members("stb_media").size() - 45), namesAndArities(list(mediaSlotsInOrder)));
    QCOMPARE(members("stb_display").mid(members("stb_display").size() - 27),
             namesAndArities(list(displaySlotsInOrder)));
}

void TestDeprecatedMetaObjects::referencesHaveEachMethodOnce_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QStringList>("methods");
    QTest::newRow("stb_media") << "stb_media" << list(mediaSlotsInOrder);
    QTest::newRow("stb_display") << "stb_display" << list(displaySlotsInOrder);
}

void TestDeprecatedMetaObjects::referencesHaveEachMethodOnce()
{
    QFETCH(const QString, object);
    QFETCH(QStringList, methods);
    methods = namesAndArities(methods);
    methods.sort();

    // Headings, and first cells of tables.
    static const QRegularExpression entry(R"(^(?:#### |\| )`(\w+\([^`]*\))`)", QRegularExpression::MultilineOption);
    QStringList found;
    for (auto matches = entry.globalMatch(reference(object)); matches.hasNext();)
        found += nameAndArity(matches.next().captured(1));
    found.sort();
    QCOMPARE(found, methods);
}

void TestDeprecatedMetaObjects::referencesNameNothingElse_data()
{
    QTest::addColumn<QString>("object");
    QTest::newRow("stb_media") << "stb_media";
    QTest::newRow("stb_display") << "stb_display";
}

// Wherever a reference uses one of the script objects, the object has that member.
void TestDeprecatedMetaObjects::referencesNameNothingElse()
{
    QFETCH(const QString, object);
    static const QRegularExpression use(R"(\b((?:stb_media|stb_display|StbMedia|StbDisplay|StbPVR)\.(\w+)))");
    int uses = 0;
    for (auto matches = use.globalMatch(reference(object)); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        // Files of that name.
        if (match.captured(2) == "md" || match.captured(2) == "eventCallback")
            continue;
        ++uses;
        const QString script = "'" + match.captured(2) + "' in " + match.captured(1).section('.', 0, 0);
        QVERIFY2(m_plugin->evaluate(script).toBool(), qPrintable(match.captured(1)));
    }
    QVERIFY(uses > 0);
}

void TestDeprecatedMetaObjects::theReferenceHasEachProperty()
{
    static const QRegularExpression entry(R"(^\| `(\w+)` \|)", QRegularExpression::MultilineOption);
    QStringList found;
    for (auto matches = entry.globalMatch(reference("stb_display")); matches.hasNext();)
        found += matches.next().captured(1);
    QCOMPARE(found, list(displayPropertiesInOrder));
    QVERIFY(reference("stb_media").contains("\n### The property `onEvent`\n"));
}

QTEST_MAIN(TestDeprecatedMetaObjects)

#include "tst_deprecatedmetaobjects.moc"
