// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ScriptObjectFinder.h"
#include "ScriptSession.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QtTest>
#include <memory>

namespace {

struct Slot
{
    const char *result;
    const char *name;
    const char *parameters; ///< "type name, type name"
};

const Slot slotsInOrder[] = {
    // players and playback
    {"int", "CreatePlayer", ""},
    {"int", "ClosePlayer", "int id"},
    {"int", "GetPlayersCount", ""},
    {"int", "PlayFile", "int id, QString path, qlonglong pos, qlonglong duration, double fps, QVariant subt"},
    // The subtitles may be left out. This is the one entry that is no method of its own.
    {"int", "PlayFile", "int id, QString path, qlonglong pos, qlonglong duration, double fps"},
    {"int", "PlayStream", "int id, QString path"},
    {"int", "PlayHttp", "int id, QString path, QString opt"},
    {"int", "PlayRtsp", "int id, QString path, qlonglong pos, int mode"},
    {"int", "PlayMagnet",
     "int id, QString magnet, QString name, qlonglong size, qlonglong pos, qlonglong duration, double fps"},
    {"int", "Pause", "int id"},
    {"int", "Stop", "int id"},
    {"int", "Continue", "int id"},
    {"int", "NextFrame", "int id"},
    {"int", "SetPosition", "int id, qlonglong pos"},
    {"qlonglong", "GetPosition", "int id"},
    {"qlonglong", "GetDuration", "int id"},
    {"int", "SetSpeed", "int id, int speed"},
    {"int", "GetSpeed", "int id"},
    {"int", "GetPlayerState", "int id"},
    // tracks
    {"int", "GetVideoPid", "int id"},
    {"int", "GetAudioPid", "int id"},
    {"int", "SetAudioPid", "int id, int pid"},
    {"int", "GetSubtitlePid", "int id"},
    {"int", "SetSubtitlePid", "int id, int pid"},
    {"int", "IsSubtitlesVisible", "int playerInstance"},
    {"int", "SetSubtitlesVisible", "int id, int visibility"},
    {"int", "GetTeletextPid", "int id"},
    {"int", "SetTeletextPid", "int id, int pid"},
    {"int", "GetTeletextPage", "int id"},
    {"int", "SetTeletextPage", "int id, int page"},
    {"int", "IsTeletextVisible", "int id"},
    {"int", "SetTeletextVisible", "int id, int visibility"},
    {"QVariant", "GetVideoTrackList", "int id"},
    {"QVariant", "GetAudioTrackList", "int id"},
    {"QVariant", "GetSubtitleTrackList", "int id"},
    {"QVariant", "GetTeletextTrackList", "int id"},
    {"QVariant", "GetLastMulticastEvent", "int id"},
    {"QVariant", "GetPlayerViewPort", "int id"},
    // sound, picture and player window
    {"int", "SetVolume", "int id, int vol"},
    {"int", "GetVolume", "int id"},
    {"int", "SetMute", "int id, int mute"},
    {"int", "IsMute", "int id"},
    {"int", "SetZoom", "int id, double zoom"},
    {"double", "GetZoom", "int id"},
    {"double", "GetFps", "int id"},
    {"int", "SetPlayerViewPort", "int id, int x, int y, int w, int h"},
    {"int", "SetPlayerAlphaLevel", "int id, int alpha"},
    {"int", "GetPlayerAlphaLevel", "int id"},
    {"int", "SetPlayerVisible", "int id, int visibility"},
    {"int", "IsPlayerVisible", "int id"},
    {"int", "SetPlayerDisplayMode", "int id, int mode"},
    {"int", "GetPlayerDisplayMode", "int id"},
    // events
    {"QVariant", "GetEventDescription", ""},
};

QString declaration(const QMetaMethod &method)
{
    QStringList parameters;
    for (int i = 0; i < method.parameterCount(); ++i)
        parameters += method.parameterTypes().at(i) + ' ' + method.parameterNames().at(i);
    return QString("%1 %2(%3)").arg(method.typeName(), QString(method.name()), parameters.join(", "));
}

// "Name(a, b)" as documents write it.
QString documented(const Slot &slot)
{
    QStringList names;
    const QStringList parameters = QString(slot.parameters).split(", ", Qt::SkipEmptyParts);
    for (const QString &parameter : parameters)
        names += parameter.section(' ', 1);
    return QString("%1(%2)").arg(slot.name, names.join(", "));
}

} // namespace

// StbMedia as the toolkit describes it, in the shipped plugin, and as its reference does.
class TestStbMediaMetaObject : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void slotsAreTheseInThisOrder();
    void onlyPublicMembersAreOffered();
    void theSignalComesFirst();
    void thePropertyIsAWritableText();
    void thePageSeesTheSlotsInThisOrder();
    void theReferenceHasEachMethodOnce();
    void theReferenceHasEachEvent();

private:
    const QMetaObject *m_metaObject = nullptr;
    std::unique_ptr<ScriptSession> m_session;
    QString m_reference;
};

void TestStbMediaMetaObject::initTestCase()
{
    const ScriptObjectFinder finder("KavroJS::StbMedia");
    m_session = std::make_unique<ScriptSession>();
    QVERIFY(m_session->start());
    m_session->plugin().evaluate("StbMedia.deleteLater()");
    QTRY_VERIFY(finder.found());
    m_metaObject = finder.found()->metaObject();

    QFile file(QCoreApplication::applicationDirPath() + "/docs/api/StbMedia.md");
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName() + ": " + file.errorString()));
    m_reference = file.readAll();
}

void TestStbMediaMetaObject::cleanupTestCase()
{
    m_session.reset();
}

void TestStbMediaMetaObject::slotsAreTheseInThisOrder()
{
    QStringList expected;
    for (const Slot &slot : slotsInOrder)
        expected += QString("%1 %2(%3)").arg(slot.result, slot.name, slot.parameters);
    QStringList actual;
    for (int i = m_metaObject->methodOffset(); i < m_metaObject->methodCount(); ++i) {
        if (m_metaObject->method(i).methodType() == QMetaMethod::Slot)
            actual += declaration(m_metaObject->method(i));
    }
    QCOMPARE(actual, expected);
    QCOMPARE(actual.size(), 52 + 1);
}

void TestStbMediaMetaObject::onlyPublicMembersAreOffered()
{
    for (int i = m_metaObject->methodOffset(); i < m_metaObject->methodCount(); ++i)
        QCOMPARE(m_metaObject->method(i).access(), QMetaMethod::Public);
    QCOMPARE(m_metaObject->constructorCount(), 0);
    QCOMPARE(m_metaObject->enumeratorCount(), m_metaObject->enumeratorOffset());
    QCOMPARE(m_metaObject->superClass(), &QObject::staticMetaObject);
}

void TestStbMediaMetaObject::theSignalComesFirst()
{
    const int first = m_metaObject->methodOffset();
    QCOMPARE(declaration(m_metaObject->method(first)), QString("int jsCallback(QString jsCode)"));
    QCOMPARE(m_metaObject->method(first).methodType(), QMetaMethod::Signal);
    QCOMPARE(m_metaObject->methodCount() - first, 1 + 52 + 1);
}

void TestStbMediaMetaObject::thePropertyIsAWritableText()
{
    QCOMPARE(m_metaObject->propertyCount() - m_metaObject->propertyOffset(), 1);
    const QMetaProperty property = m_metaObject->property(m_metaObject->propertyOffset());
    QCOMPARE(QByteArray(property.name()), QByteArray("onEvent"));
    QCOMPARE(QByteArray(property.typeName()), QByteArray("QString"));
    QVERIFY(property.isReadable() && property.isWritable() && property.isScriptable());
    QVERIFY(!property.hasNotifySignal() && !property.isConstant());
}

void TestStbMediaMetaObject::thePageSeesTheSlotsInThisOrder()
{
    QStringList expected = {"jsCallback"};
    for (const Slot &slot : slotsInOrder) {
        if (expected.last() != slot.name)
            expected += slot.name;
    }
    const QStringList actual =
        m_session->plugin()
            .evaluate("(function () { var names = []; for (var member in StbMedia) {"
                      "var name = member.split('(')[0];"
                      "if (name !== member && names[names.length - 1] !== name) names.push(name); }"
                      "return names; })()")
            .toStringList();
    QCOMPARE(actual.mid(actual.indexOf("jsCallback")), expected);
    QCOMPARE(m_session->plugin().evaluateToJson("typeof StbMedia.PlayFile + typeof StbMedia.GetEventDescription"),
             QString("\"functionfunction\""));
}

void TestStbMediaMetaObject::theReferenceHasEachMethodOnce()
{
    QStringList expected;
    for (const Slot &slot : slotsInOrder) {
        if (expected.isEmpty() || expected.last().section('(', 0, 0) != slot.name)
            expected += documented(slot);
    }
    expected.sort();

    static const QRegularExpression heading(R"(^#### `(\w+\(.*\))`$)", QRegularExpression::MultilineOption);
    QStringList actual;
    for (auto matches = heading.globalMatch(m_reference); matches.hasNext();)
        actual += matches.next().captured(1);
    actual.removeOne("SetEventCallback(fun)"); // the browser's own addition
    actual.sort();
    QCOMPARE(actual, expected);
}

void TestStbMediaMetaObject::theReferenceHasEachEvent()
{
    static const QRegularExpression row(R"(^\| (\d+) \|)", QRegularExpression::MultilineOption);
    QStringList actual;
    for (auto matches = row.globalMatch(m_reference.section("## Events", 1)); matches.hasNext();)
        actual += matches.next().captured(1);
    QCOMPARE(actual, QString("1 2 3 4 5 6 7 8 9 11 14 15 137 139 144").split(' '));
}

QTEST_MAIN(TestStbMediaMetaObject)
#include "tst_stbmediametaobject.moc"
