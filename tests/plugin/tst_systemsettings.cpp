// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StreamCapture.h"
#include "common/other/tools.h"
#include "config/SystemSettings.h"
#include "tests/support/BoxFile.h"
#include "tests/support/MessageLog.h"
#include "tests/support/OddFile.h"

#include <QBuffer>
#include <QtTest>

namespace {

const char *const settingsFile = "/etc/settings.xml";

QByteArray errorLine(const char *signature, const QByteArray &message)
{
    return QByteArray("../common/other/tools.cpp: \033[0;31m-E-\033[0m ") + signature + " Error: " + message + "\n";
}

QByteArray notASettingsFile()
{
    return errorLine("QString Common::CSettingsParser::parse(QIODevice*, const QString&, const QString&)",
                     "Not a settings file or version is not 0.1");
}

QByteArray cannotOpen(const QByteArray &error = "No such file or directory")
{
    return errorLine("QString Common::settingsValue(const QString&, const QString&)",
                     "Can't open /etc/settings.xml " + error);
}

QByteArray settings(const QByteArray &sections)
{
    return "<settings version=\"0.1\">" + sections + "</settings>";
}

QByteArray systemSetting(const QByteArray &key, const QByteArray &value)
{
    return settings("<system><" + key + ">" + value + "</" + key + "></system>");
}

} // namespace

// The box's settings file, which other programs of the box write.
class TestSystemSettings : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void aValueIsFoundBySectionAndKey_data();
    void aValueIsFoundBySectionAndKey();
    void whatIsNotThereIsNullWithoutAnyLine_data();
    void whatIsNotThereIsNullWithoutAnyLine();
    void whatIsNoSettingsFileIsNullAndSaysSo_data();
    void whatIsNoSettingsFileIsNullAndSaysSo();
    void aMissingFileIsNullAndNamesTheError();
    void anOddFileIsNullAndSaysSo_data();
    void anOddFileIsNullAndSaysSo();
    void aChangedFileIsSeenByTheNextQuestion();
    void theLanguageIsRussianForExactlyRus_data();
    void theLanguageIsRussianForExactlyRus();
    void theDisplayModeIsStandardForExactlySd_data();
    void theDisplayModeIsStandardForExactlySd();
    void withoutAFileTheBoxIsEnglishAndInHighDefinition();
    void theReadersErrorNamesLineAndColumn();
    void textsAreWrittenAsUtf8();
};

void TestSystemSettings::cleanup()
{
    QFile::remove(settingsFile);
    QDir().rmdir(settingsFile);
}

void TestSystemSettings::aValueIsFoundBySectionAndKey_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("value");

    QTest::newRow("alone") << settings("<system><language>rus</language></system>") << "rus";
    QTest::newRow("with an XML declaration and comments")
        << "<?xml version=\"1.0\"?>\n<!-- box -->\n" + settings("<!-- s --><system><language>rus</language></system>")
        << "rus";
    QTest::newRow("with a document type")
        << "<!DOCTYPE settings>" + settings("<system><language>rus</language></system>") << "rus";
    QTest::newRow("with further attributes")
        << QByteArray("<settings owner='box' version='0.1'><system id='1'><language a='b'>rus</language></system>"
                      "</settings>")
        << "rus";
    QTest::newRow("behind another section")
        << settings("<network><language>eng</language></network><system><language>rus</language></system>") << "rus";
    QTest::newRow("behind another key") << settings("<system><gui_mode>SD</gui_mode><language>rus</language></system>")
                                        << "rus";
    QTest::newRow("behind a key that holds one of the same name")
        << settings("<system><other><language>eng</language></other><language>rus</language></system>") << "rus";
    QTest::newRow("behind a section that holds one of the same name")
        << settings("<a><system><language>eng</language></system></a><system><language>rus</language></system>")
        << "rus";
    QTest::newRow("the first of two keys")
        << settings("<system><language>rus</language><language>eng</language></system>") << "rus";
    QTest::newRow("the first of two sections")
        << settings("<system><language>rus</language></system><system><language>eng</language></system>") << "rus";
    QTest::newRow("blanks are part of it") << settings("<system><language> rus\n</language></system>") << " rus\n";
    QTest::newRow("entities and other letters")
        << settings("<system><language>a&amp;\xd1\x8f</language></system>") << QString::fromUtf8("a&\xd1\x8f");
    QTest::newRow("around a comment") << settings("<system><language>r<!-- -->us</language></system>") << "rus";
    QTest::newRow("around an element") << settings("<system><language>r<b>x</b>us</language></system>") << "rus";
    QTest::newRow("malformed behind the value")
        << QByteArray("<settings version='0.1'><system><language>rus</language></oops") << "rus";
}

void TestSystemSettings::aValueIsFoundBySectionAndKey()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, value);
    writeBoxFile(settingsFile, file);
    const StreamCapture errors(std::cerr);

    QCOMPARE(Common::settingsValue("system", "language"), value);
    QCOMPARE(errors.text(), QByteArray());
}

void TestSystemSettings::whatIsNotThereIsNullWithoutAnyLine_data()
{
    QTest::addColumn<QByteArray>("file");

    QTest::newRow("no section") << settings("");
    QTest::newRow("another section") << settings("<network><language>rus</language></network>");
    QTest::newRow("another key") << settings("<system><gui_mode>SD</gui_mode></system>");
    QTest::newRow("section in capitals") << settings("<System><language>rus</language></System>");
    QTest::newRow("key in capitals") << settings("<system><LANGUAGE>rus</LANGUAGE></system>");
    QTest::newRow("key in a second section only")
        << settings("<system><gui_mode>SD</gui_mode></system><system><language>rus</language></system>");
    QTest::newRow("key one level deeper") << settings("<system><deeper><language>rus</language></deeper></system>");
    QTest::newRow("section one level deeper") << settings("<deeper><system><language>rus</language></system></deeper>");
    QTest::newRow("key directly under the root") << settings("<language>rus</language>");
    QTest::newRow("malformed before the section")
        << QByteArray("<settings version='0.1'><a></b><system><language>rus</language></system></settings>");
    QTest::newRow("malformed before the key")
        << QByteArray("<settings version='0.1'><system><a></b><language>rus</language></system></settings>");
    QTest::newRow("malformed in the value")
        << QByteArray("<settings version='0.1'><system><language>rus</oops></system></settings>");
    QTest::newRow("cut off in the value") << QByteArray("<settings version='0.1'><system><language>rus");
    QTest::newRow("cut off behind the root") << QByteArray("<settings version='0.1'>");
}

void TestSystemSettings::whatIsNotThereIsNullWithoutAnyLine()
{
    QFETCH(QByteArray, file);
    writeBoxFile(settingsFile, file);
    const StreamCapture errors(std::cerr);

    const QString value = Common::settingsValue("system", "language");

    QVERIFY2(value.isNull(), qPrintable(value));
    QCOMPARE(errors.text(), QByteArray());
}

void TestSystemSettings::whatIsNoSettingsFileIsNullAndSaysSo_data()
{
    QTest::addColumn<QByteArray>("file");

    const QByteArray body = "<system><language>rus</language></system></settings>";
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no XML") << QByteArray("language=rus\n");
    QTest::newRow("a declaration only") << QByteArray("<?xml version=\"1.0\"?>");
    QTest::newRow("another root") << QByteArray(
        "<setup version='0.1'><system><language>rus</language></system></setup>");
    QTest::newRow("root in capitals") << QByteArray(
        "<Settings version='0.1'><system><language>rus</language></system></Settings>");
    QTest::newRow("no version") << "<settings>" + body;
    QTest::newRow("empty version") << "<settings version=''>" + body;
    QTest::newRow("later version") << "<settings version='0.2'>" + body;
    QTest::newRow("equal number, other text") << "<settings version='0.10'>" + body;
    QTest::newRow("version with a blank") << "<settings version=' 0.1'>" + body;
    QTest::newRow("attribute in capitals") << "<settings Version='0.1'>" + body;
    QTest::newRow("malformed root") << "<settings version=0.1>" + body;
}

void TestSystemSettings::whatIsNoSettingsFileIsNullAndSaysSo()
{
    QFETCH(QByteArray, file);
    writeBoxFile(settingsFile, file);
    const StreamCapture errors(std::cerr);

    const QString value = Common::settingsValue("system", "language");

    QVERIFY2(value.isNull(), qPrintable(value));
    QCOMPARE(errors.text(), notASettingsFile());
}

void TestSystemSettings::aMissingFileIsNullAndNamesTheError()
{
    QFile::remove(settingsFile);
    const StreamCapture errors(std::cerr);

    QVERIFY(Common::settingsValue("system", "language").isNull());
    QCOMPARE(errors.text(), cannotOpen());
}

void TestSystemSettings::anOddFileIsNullAndSaysSo_data()
{
    QTest::addColumn<QByteArray>("error");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("what");
    for (const OddFile::Row &row : OddFile::all)
        QTest::newRow(row.name) << QByteArray(row.kind == OddFile::Folder         ? "Is a directory"
                                                  : row.kind == OddFile::Gigabyte ? "File too large"
                                                                                  : "Invalid argument")
                                << int(row.kind) << QString(row.what);
}

void TestSystemSettings::anOddFileIsNullAndSaysSo()
{
    QFETCH(const QByteArray, error);
    QFETCH(const int, kind);
    QFETCH(const QString, what);
    QVERIFY(OddFile::put(settingsFile, OddFile::Kind(kind)));
    const StreamCapture errors(std::cerr);
    const MessageLog log;
    QCOMPARE(Common::getCurrentLanguage(), QLocale::English);
    QCOMPARE(Common::getDisplayMode(), 1920);
    QCOMPARE(errors.text(), cannotOpen(error).repeated(2));
    QCOMPARE(log.warnings().size(), 1);
    QVERIFY(log.warnings().constFirst().startsWith("/etc/settings.xml is " + what));
}

void TestSystemSettings::aChangedFileIsSeenByTheNextQuestion()
{
    writeBoxFile(settingsFile, systemSetting("language", "rus"));
    QCOMPARE(Common::settingsValue("system", "language"), QString("rus"));

    writeBoxFile(settingsFile, systemSetting("language", "deu"));
    QCOMPARE(Common::settingsValue("system", "language"), QString("deu"));
}

void TestSystemSettings::theLanguageIsRussianForExactlyRus_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QLocale::Language>("language");

    QTest::newRow("rus") << QByteArray("rus") << QLocale::Russian;
    QTest::newRow("capitals") << QByteArray("RUS") << QLocale::English;
    QTest::newRow("two letters") << QByteArray("ru") << QLocale::English;
    QTest::newRow("with a blank") << QByteArray("rus ") << QLocale::English;
    QTest::newRow("longer") << QByteArray("russian") << QLocale::English;
    QTest::newRow("eng") << QByteArray("eng") << QLocale::English;
    QTest::newRow("another language") << QByteArray("deu") << QLocale::English;
    QTest::newRow("nothing") << QByteArray() << QLocale::English;
}

void TestSystemSettings::theLanguageIsRussianForExactlyRus()
{
    QFETCH(QByteArray, value);
    QFETCH(QLocale::Language, language);
    writeBoxFile(settingsFile, systemSetting("language", value));

    QCOMPARE(Common::getCurrentLanguage(), language);
}

void TestSystemSettings::theDisplayModeIsStandardForExactlySd_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<int>("mode");

    QTest::newRow("SD") << QByteArray("SD") << 1440;
    QTest::newRow("small letters") << QByteArray("sd") << 1920;
    QTest::newRow("with a blank") << QByteArray(" SD") << 1920;
    QTest::newRow("HD") << QByteArray("HD") << 1920;
    QTest::newRow("nothing") << QByteArray() << 1920;
}

void TestSystemSettings::theDisplayModeIsStandardForExactlySd()
{
    QFETCH(QByteArray, value);
    QFETCH(int, mode);
    writeBoxFile(settingsFile, systemSetting("gui_mode", value));

    QCOMPARE(Common::getDisplayMode(), mode);
}

void TestSystemSettings::withoutAFileTheBoxIsEnglishAndInHighDefinition()
{
    QFile::remove(settingsFile);
    const StreamCapture errors(std::cerr);

    QCOMPARE(Common::getCurrentLanguage(), QLocale::English);
    QCOMPARE(Common::getDisplayMode(), 1920);
    QCOMPARE(errors.text(), cannotOpen() + cannotOpen());
}

void TestSystemSettings::theReadersErrorNamesLineAndColumn()
{
    QByteArray text = "<settings version='0.1'>\n<system>\n  <a></b>";
    QBuffer device(&text);
    QVERIFY(device.open(QIODevice::ReadOnly));
    Common::CSettingsParser parser;

    QVERIFY(parser.parse(&device, "system", "language").isNull());
    QCOMPARE(parser.errorString(),
             QString("%1\nLine 3, column 9").arg(static_cast<QXmlStreamReader &>(parser).errorString()));
    QVERIFY(static_cast<QXmlStreamReader &>(parser).errorString().contains("tag"));
}

void TestSystemSettings::textsAreWrittenAsUtf8()
{
    const QByteArray text = "\xd0\x9f\xd0\xbe\xd1\x80\xd1\x82\xd0\xb0\xd0\xbb \xe2\x82\xac";
    std::ostringstream stream;

    stream << QString::fromUtf8(text) << "|" << QString();
    QCOMPARE(QByteArray::fromStdString(stream.str()), text + "|");
}

QTEST_GUILESS_MAIN(TestSystemSettings)
#include "tst_systemsettings.moc"
