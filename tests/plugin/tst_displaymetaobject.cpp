// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/BoxFile.h"
#include "tests/support/HostedPlugin.h"

#include "jsapi/StbDisplay.h"
#include "jsapi/StbPVR.h"
#include "shell/CStbApplication.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QtTest>

Q_DECLARE_METATYPE(const QMetaObject *)

namespace {

QStringList parameters(const QMetaMethod &method)
{
    QStringList result;
    const QList<QByteArray> types = method.parameterTypes();
    const QList<QByteArray> names = method.parameterNames();
    for (int i = 0; i < types.size(); ++i)
        result += QString(types[i] + ' ' + names[i]).trimmed();
    return result;
}

// "result Name(type name, type name)" for each of a class's own methods of one kind.
QStringList methods(const QMetaObject &metaObject, QMetaMethod::MethodType kind)
{
    QStringList result;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        if (method.methodType() == kind && method.access() == QMetaMethod::Public)
            result += QString("%1 %2(%3)").arg(method.typeName(), method.name(), parameters(method).join(", "));
    }
    return result;
}

int ownMethods(const QMetaObject &metaObject)
{
    return metaObject.methodCount() - metaObject.methodOffset();
}

QStringList signatures(const QMetaObject &metaObject)
{
    QStringList result;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i)
        result += metaObject.method(i).methodSignature();
    return result;
}

} // namespace

// What the launcher and pages see of StbDisplay and StbPVR through the toolkit: everything counts, the order too.
class TestDisplayMetaObject : public QObject
{
    Q_OBJECT

private slots:
    void classesHaveTheirNames();
    void displayHasItsSlots();
    void displayHasItsSignals();
    void displayHasItsProperties();
    void pvrHasItsSlots();
    void pagesSeeTheSameMembersInThisOrder();
    void answersOfSeveralTextsAreVariantLists();
    void theReferenceHasEachMethodOnce_data();
    void theReferenceHasEachMethodOnce();
    void theReferenceHasEachProperty();
    void theReferencesExamplesAreScripts_data();
    void theReferencesExamplesAreScripts();

private:
    static QString reference(const QString &object);
};

void TestDisplayMetaObject::classesHaveTheirNames()
{
    QCOMPARE(KavroJS::StbDisplay::staticMetaObject.className(), "KavroJS::StbDisplay");
    QCOMPARE(KavroJS::StbPVR::staticMetaObject.className(), "KavroJS::StbPVR");
    QCOMPARE(KavroJS::StbDisplay::staticMetaObject.superClass(), &QObject::staticMetaObject);
    QCOMPARE(KavroJS::StbPVR::staticMetaObject.superClass(), &QObject::staticMetaObject);
}

void TestDisplayMetaObject::displayHasItsSlots()
{
    const QStringList slotTable = {
        "int SetGraphicsViewport(int, int, int, int)",
        "QVariant GetGraphicsViewport()",
        "int SetGraphicsVisible(int)",
        "int IsGraphicsVisible()",
        "int SetAlphaLevel(uint)",
        "int GetAlphaLevel()",
        "int SetChromaKey(int color)",
        "int GetChromaKey()",
        "int IsChromaKeyEnable()",
        "int SetChromaKeyEnable(int)",
        "int SetCurrentRMLayout(int)",
        "int GetCurrentRMLayout()",
        "int SwitchToNextRMLayout()",
        "QVariant GetOrder()",
        "int SetOrder(QVariantList)",
        "int IsOutportsEnabled()",
        "int GetHdmiState()",
        "int SetBootParamValue(QString key, QString value)",
        "QVariant GetBootParamValue(QString key)",
        "int SyncBootParams()",
        "int UpgradeFirmware(QString url)",
        "int EnableHtml5LocalStorage(bool isEnabled)",
        "int Reboot()",
        "int ExitToMenu()",
        "int SetKeyEventPeriod(int ms)",
        "QVariant ListFiles(QString dir)",
        "QVariant ListDirs(QString dir)",
        "QVariant ExecBlocking(QString cmd, QString args)",
        "int Debug(QString Debug)",
        "int Log(QString Log)",
    };
    QCOMPARE(slotTable.size(), 30);
    QCOMPARE(methods(KavroJS::StbDisplay::staticMetaObject, QMetaMethod::Slot), slotTable);
    QCOMPARE(ownMethods(KavroJS::StbDisplay::staticMetaObject), 30 + 2);
}

void TestDisplayMetaObject::displayHasItsSignals()
{
    QCOMPARE(methods(KavroJS::StbDisplay::staticMetaObject, QMetaMethod::Signal),
             QStringList({"void ExitToMenuSignal()", "void keyDelayChanged(int)"}));
}

void TestDisplayMetaObject::displayHasItsProperties()
{
    const QMetaObject &metaObject = KavroJS::StbDisplay::staticMetaObject;
    QStringList names;
    for (int i = metaObject.propertyOffset(); i < metaObject.propertyCount(); ++i) {
        const QMetaProperty property = metaObject.property(i);
        names += property.name();
        QCOMPARE(property.typeName(), "QString");
        QVERIFY(property.isReadable() && property.isScriptable());
        QVERIFY(!property.isWritable() && !property.isResettable() && !property.hasNotifySignal());
        QVERIFY(!property.isConstant()); // computed afresh on each read
    }
    QCOMPARE(names,
             QStringList({"APIVersion", "EthernetHardwareAddress", "IpAddress", "DeviceModel", "FirmwareVersion",
                          "SerialNumber"}));
}

void TestDisplayMetaObject::pvrHasItsSlots()
{
    const QMetaObject &metaObject = KavroJS::StbPVR::staticMetaObject;
    const QStringList slotTable = {
        "int AddRecord(QString url, QString fn, QDateTime starttime, int duration)",
        "QVariant GetRecordsList()",
        "QVariant GetRecordStatus(KVR_ID id)",
        "int SetRecordStartTime(KVR_ID, QVariant)",
        "int SetRecordDuration(KVR_ID, int)",
        "int SetRecordFilename(KVR_ID, QString)",
        "int SetRecordUrl(KVR_ID id, QString url)",
        "QString GetRecordFilename(KVR_ID)",
        "void CleanUpRecords()",
        "int DeleteRecord(KVR_ID id)",
    };
    QCOMPARE(methods(metaObject, QMetaMethod::Slot), slotTable);
    QCOMPARE(ownMethods(metaObject), 10);
    QCOMPARE(metaObject.propertyCount(), metaObject.propertyOffset());
}

// The classes above are those of this program; these are the plugin's own.
void TestDisplayMetaObject::pagesSeeTheSameMembersInThisOrder()
{
    HostedPlugin::writeManifest(PluginManifest());
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("<title>members</title>"));
    const auto pageMembers = [&plugin](const QString &object) {
        return plugin
            .evaluate("(function () { var names = []; for (var name in " + object
                      + ") if (name.indexOf('(') > 0) names.push(name); return names; })()")
            .toStringList();
    };
    const QStringList display = pageMembers("StbDisplay");
    const QStringList displayTable = signatures(KavroJS::StbDisplay::staticMetaObject);
    QCOMPARE(display.mid(display.size() - displayTable.size()), displayTable);
    const QStringList pvr = pageMembers("StbPVR");
    const QStringList pvrTable = signatures(KavroJS::StbPVR::staticMetaObject);
    QCOMPARE(pvr.mid(pvr.size() - pvrTable.size()), pvrTable);
    QCOMPARE(plugin.evaluate("String(StbDisplay)"), QVariant("KavroJS::StbDisplay(name = \"\")"));
    QCOMPARE(plugin.evaluate("String(StbPVR)"), QVariant("KavroJS::StbPVR(name = \"\")"));
}

// A page sees an array either way; callers in C++ ask for the type.
void TestDisplayMetaObject::answersOfSeveralTextsAreVariantLists()
{
    writeBoxFile("/mnt/stb/dir/file", "");
    const QString script = "/usr/local/bin/custom/lines";
    writeBoxFile(script, "#!/bin/sh\necho a; echo b >&2\n");
    QVERIFY(QFile::setPermissions(fromOutside(script), QFile::ReadOwner | QFile::ExeOwner));

    KavroJS::StbDisplay display;
    const QVariantMap outcome = display.ExecBlocking("lines", "").toMap();
    const QPair<QVariant, QVariantList> answers[] = {{display.ListFiles("dir"), {"file"}},
                                                     {display.ListFiles("none"), {}},
                                                     {display.ListDirs("dir"), {".", ".."}},
                                                     {outcome["stdout"], {"a"}},
                                                     {outcome["stderr"], {"b"}}};
    for (const auto &[answer, expected] : answers) {
        QCOMPARE(answer.type(), QVariant::List); // a variant would compare as equal to one of another type
        QCOMPARE(answer.toList(), expected);
    }
}

QString TestDisplayMetaObject::reference(const QString &object)
{
    QFile file(QCoreApplication::applicationDirPath() + "/docs/api/" + object + ".md");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void TestDisplayMetaObject::theReferenceHasEachMethodOnce_data()
{
    QTest::addColumn<const QMetaObject *>("metaObject");
    QTest::newRow("StbDisplay") << &KavroJS::StbDisplay::staticMetaObject;
    QTest::newRow("StbPVR") << &KavroJS::StbPVR::staticMetaObject;
}

void TestDisplayMetaObject::theReferenceHasEachMethodOnce()
{
    QFETCH(const QMetaObject *const, metaObject);
    static const QRegularExpression heading(R"(^#### `(\w+)\((.*)\)`$)", QRegularExpression::MultilineOption);
    QMap<QString, QStringList> documented;
    for (auto matches = heading.globalMatch(reference(QTest::currentDataTag())); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        QVERIFY2(!documented.contains(match.captured(1)), qPrintable(match.captured(1)));
        documented[match.captured(1)] = match.captured(2).split(", ", Qt::SkipEmptyParts);
    }
    for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i) {
        const QMetaMethod method = metaObject->method(i);
        if (method.methodType() != QMetaMethod::Slot)
            continue;
        QVERIFY2(documented.contains(method.name()), method.name().constData());
        const QStringList names = documented.take(method.name());
        QCOMPARE(names.size(), method.parameterCount());
        for (int n = 0; n < names.size(); ++n) {
            const QString name = method.parameterNames().at(n);
            QCOMPARE(names[n], name.isEmpty() ? names[n] : name);
        }
    }
    QCOMPARE(documented.keys(), QStringList());
}

void TestDisplayMetaObject::theReferenceHasEachProperty()
{
    static const QRegularExpression row(R"(^\| `(\w+)` \|)", QRegularExpression::MultilineOption);
    QStringList documented;
    for (auto matches = row.globalMatch(reference("StbDisplay").section("## The box", 1).section("####", 0, 0));
         matches.hasNext();)
        documented += matches.next().captured(1);
    const QMetaObject &metaObject = KavroJS::StbDisplay::staticMetaObject;
    QStringList properties;
    for (int i = metaObject.propertyOffset(); i < metaObject.propertyCount(); ++i)
        properties += metaObject.property(i).name();
    QCOMPARE(documented, properties);
}

void TestDisplayMetaObject::theReferencesExamplesAreScripts_data()
{
    QTest::addColumn<int>("examples");
    QTest::newRow("StbDisplay") << 6;
    QTest::newRow("StbPVR") << 3;
}

void TestDisplayMetaObject::theReferencesExamplesAreScripts()
{
    QFETCH(const int, examples);
    HostedPlugin plugin;
    QVERIFY(plugin.start());
    QVERIFY(plugin.loadHtml("<title>examples</title>"));
    static const QRegularExpression block(
        "^```js\n(.*?)^```", QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    int count = 0;
    for (auto matches = block.globalMatch(reference(QTest::currentDataTag())); matches.hasNext(); ++count) {
        const QString example = matches.next().captured(1);
        const QString quoted = QJsonDocument(QJsonArray{example}).toJson(QJsonDocument::Compact);
        // What a method answers is a value, not a script.
        const QString script =
            (example.startsWith('{') ? "new Function('return ' + " : "new Function(") + quoted + "[0])";
        QCOMPARE(plugin.evaluateToJson("typeof " + script), QString("\"function\""));
    }
    QCOMPARE(count, examples);
}

QTEST_MAIN(TestDisplayMetaObject)

#include "tst_displaymetaobject.moc"
