// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "config/PluginConfigParser.h"
#include "tests/support/BoxFile.h"
#include "tests/support/MessageLog.h"
#include "tests/support/OddFile.h"

#include <QtTest>

namespace {

const char *const pluginDir = "/sdk/plugin";
const char *const pluginManifest = "/sdk/plugin/PluginManifest.xml";
// What is left of the plugin's path stands below the folder of the users' manifests.
const char *const userManifest = "/home/user/config/plugins/sdk/plugin/PluginManifest.xml";
const char *const settingsFile = "/etc/settings.xml";

void setLanguage(const QByteArray &language)
{
    writeBoxFile(settingsFile,
                 "<settings version='0.1'><system><language>" + language + "</language></system></settings>");
}

void setDisplayMode(const QByteArray &mode)
{
    writeBoxFile(settingsFile, "<settings version='0.1'><system><gui_mode>" + mode + "</gui_mode></system></settings>");
}

const QVariantMap initialFields()
{
    return {
        {"valid", true},
        {"textSizeMultiplier", 1.0f},
        {"language", "eng"},
        {"smallIcon", ""},
        {"bigIcon", ""},
        {"splashImage", ""},
        {"briefDescription", ""},
        {"longDescription", ""},
        {"homePage", ""},
        {"errorPage", ""},
        {"resolution", QSize(-1, -1)},
        {"systemwideResolution", false},
        {"hdResolution", QSize(-1, -1)},
        {"sdResolution", QSize(-1, -1)},
        {"supportsSd", false},
    };
}

// What a manifest sets, the rest being as at the beginning.
QVariantMap changedFields(const PluginConfigParser &parser)
{
    QVariantMap fields = {
        {"valid", parser.valid},
        {"textSizeMultiplier", parser.textSizeMultiplier},
        {"language", parser.language},
        {"smallIcon", parser.smallIcon},
        {"bigIcon", parser.bigIcon},
        {"splashImage", parser.splashImage},
        {"briefDescription", parser.briefDescription},
        {"longDescription", parser.longDescription},
        {"homePage", parser.homePage},
        {"errorPage", parser.errorPage},
        {"resolution", parser.resolution},
        {"systemwideResolution", parser.systemwideResolution},
        {"hdResolution", parser.hdResolution},
        {"sdResolution", parser.sdResolution},
        {"supportsSd", parser.supportsSd},
    };
    const QVariantMap initial = initialFields();
    for (auto field = initial.begin(); field != initial.end(); ++field) {
        if (fields.value(field.key()) == field.value())
            fields.remove(field.key());
    }
    return fields;
}

QByteArray manifest(const QByteArray &entries)
{
    return "<plugin_config>" + entries + "</plugin_config>";
}

void addRow(const char *name, const QByteArray &entries, const QVariantMap &fields)
{
    QTest::newRow(name) << manifest(entries) << fields;
}

} // namespace

// The manifest in the plugin's directory, and the user's manifest over it.
class TestManifest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void entriesAreReadByTheirType_data();
    void entriesAreReadByTheirType();
    void theLongDescriptionIsInTheBoxsLanguage_data();
    void theLongDescriptionIsInTheBoxsLanguage();
    void theLastEntryWins_data();
    void theLastEntryWins();
    void theUsersManifestIsLaidOver_data();
    void theUsersManifestIsLaidOver();
    void aBrokenManifestLeavesTheInitialValues_data();
    void aBrokenManifestLeavesTheInitialValues();
    void aBrokenUsersManifestLeavesThePluginsValues();
    void anOddFileIsNoManifest_data();
    void anOddFileIsNoManifest();
    void theUsersFolderFollowsThePluginsPath_data();
    void theUsersFolderFollowsThePluginsPath();
    void theDisplayModeChoosesASystemwideResolution_data();
    void theDisplayModeChoosesASystemwideResolution();
    void settingTheResolutionWritesNothing();
    void savingWritesTheResolutionAlone();
    void aSavedResolutionIsReadAgain();
    void savingSucceedsEvenWhereNothingCanBeWritten();
    void theDocumentIsTheOneReadLast();
    void thereIsOneParserUntilItIsDestroyed();
};

void TestManifest::init()
{
    QFile::remove(fromOutside(pluginManifest));
    QDir().rmdir(fromOutside(pluginManifest));
    QDir("/home/user/config/plugins").removeRecursively();
    setLanguage("eng");
}

void TestManifest::entriesAreReadByTheirType_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QVariantMap>("fields");

    addRow("nothing", "", {});
    addRow("big icon", "<a type='big_icon' src='b.png'/>", {{"bigIcon", "b.png"}});
    addRow("small icon", "<a type='small_icon' src='s.png'/>", {{"smallIcon", "s.png"}});
    addRow("splash image", "<a type='splash_image' src='p.png'/>", {{"splashImage", "p.png"}});
    addRow("brief description", "<a type='brief_descr'>TV</a>", {{"briefDescription", "TV"}});
    addRow("long description", "<a type='long_descr'>All TV</a>", {{"longDescription", "All TV"}});
    addRow("home page", "<a type='homepage' src='http://h/'/>", {{"homePage", "http://h/"}});
    addRow("error page", "<a type='errorpage' src='http://e/'/>", {{"errorPage", "http://e/"}});
    addRow("standard definition", "<a type='supports_sd' val='true'/>", {{"supportsSd", true}});
    addRow("text size", "<a type='text_size_multiplier'>1.5</a>", {{"textSizeMultiplier", 1.5f}});
    addRow("resolution", "<size type='resolution' width='1280' height='720'/>", {{"resolution", QSize(1280, 720)}});

    addRow("values are kept as written", "<a type='homepage' src='  no address &amp; more '/>",
           {{"homePage", "  no address & more "}});
    addRow("three levels deep", "<x><y><z type='homepage' src='h'/></y></x>", {{"homePage", "h"}});
    addRow("inside another entry", "<x type='big_icon' src='b'><y type='small_icon' src='s'/></x>",
           {{"bigIcon", "b"}, {"smallIcon", "s"}});
    addRow("inside an unknown type", "<x type='other'><y type='small_icon' src='s'/></x>", {{"smallIcon", "s"}});
    addRow("inside a description in another language",
           "<x type='long_descr' lang='rus'>no<y type='small_icon' src='s'/></x>", {{"smallIcon", "s"}});
    addRow("unknown types", "<a type='Homepage' src='h'/><b type='' src='h'/><homepage src='h'/>", {});
    addRow("another attribute", "<a type='homepage' href='h'/>", {});

    addRow("sd: another case", "<a type='supports_sd' val='True'/>", {});
    addRow("sd: false", "<a type='supports_sd' val='false'/>", {});
    addRow("sd: 1", "<a type='supports_sd' val='1'/>", {});
    addRow("sd: no value", "<a type='supports_sd'/>", {});
    addRow("sd: as text", "<a type='supports_sd'>true</a>", {});

    addRow("text size: no number", "<a type='text_size_multiplier'>big</a>", {{"textSizeMultiplier", 0.0f}});
    addRow("text size: empty", "<a type='text_size_multiplier'/>", {{"textSizeMultiplier", 0.0f}});
    addRow("text size: decimal comma", "<a type='text_size_multiplier'>1,5</a>", {{"textSizeMultiplier", 0.0f}});
    addRow("text size: exponent", "<a type='text_size_multiplier'>15e-1</a>", {{"textSizeMultiplier", 1.5f}});
    addRow("text size: behind an element", "<a type='text_size_multiplier'><b/>1.5</a>",
           {{"textSizeMultiplier", 0.0f}});

    addRow("resolution: no numbers", "<a type='resolution' width='wide' height='high'/>",
           {{"resolution", QSize(0, 0)}});
    addRow("resolution: no attributes", "<a type='resolution'/>", {{"resolution", QSize(0, 0)}});
    addRow("resolution: no height", "<a type='resolution' width='720'/>", {{"resolution", QSize(720, 0)}});
    addRow("resolution: negative", "<a type='resolution' width='-5' height='-6'/>", {{"resolution", QSize(-5, -6)}});
    addRow("resolution: hexadecimal", "<a type='resolution' width='0x10' height='010'/>",
           {{"resolution", QSize(0, 10)}});
    addRow("resolution: src in another case", "<a type='resolution' src='Systemwide' width='1' height='2'/>",
           {{"resolution", QSize(1, 2)}});

    addRow("systemwide: both",
           "<a type='resolution' src='systemwide'><b id='HD' width='1920' height='1080'/>"
           "<b id='SD' width='720' height='576'/></a>",
           {{"systemwideResolution", true}, {"hdResolution", QSize(1920, 1080)}, {"sdResolution", QSize(720, 576)}});
    addRow("systemwide: own size does not count", "<a type='resolution' src='systemwide' width='5' height='6'/>",
           {{"systemwideResolution", true}});
    addRow("systemwide: no id", "<a type='resolution' src='systemwide'><b width='1' height='2'/></a>",
           {{"systemwideResolution", true}, {"sdResolution", QSize(1, 2)}});
    addRow("systemwide: hd in small letters",
           "<a type='resolution' src='systemwide'><b id='hd' width='1' height='2'/></a>",
           {{"systemwideResolution", true}, {"sdResolution", QSize(1, 2)}});
    addRow("systemwide: child without size", "<a type='resolution' src='systemwide'><b id='HD'/><b/></a>",
           {{"systemwideResolution", true}, {"hdResolution", QSize(0, 0)}, {"sdResolution", QSize(0, 0)}});
    addRow(
        "systemwide: the last child of a kind",
        "<a type='resolution' src='systemwide'><b id='HD' width='1' height='2'/><b id='HD' width='3' height='4'/></a>",
        {{"systemwideResolution", true}, {"hdResolution", QSize(3, 4)}});
    addRow("systemwide: children are entries too",
           "<a type='resolution' src='systemwide'><b id='HD' type='resolution' width='1' height='2'/></a>",
           {{"systemwideResolution", true}, {"hdResolution", QSize(1, 2)}, {"resolution", QSize(1, 2)}});
    addRow("systemwide: besides an own resolution",
           "<a type='resolution' src='systemwide'/><a type='resolution' width='1' height='2'/>",
           {{"systemwideResolution", true}, {"resolution", QSize(1, 2)}});
}

void TestManifest::entriesAreReadByTheirType()
{
    QFETCH(QByteArray, xml);
    QFETCH(QVariantMap, fields);
    writeBoxFile(pluginManifest, xml);
    const MessageLog log;

    QCOMPARE(changedFields(PluginConfigParser(QDir(pluginDir))), fields);
    QCOMPARE(log.debugLines(), QStringList());
}

void TestManifest::theLongDescriptionIsInTheBoxsLanguage_data()
{
    QTest::addColumn<QByteArray>("language");
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<QString>("description");

    const QByteArray both = "<d type='long_descr' lang='eng'>English</d><d type='long_descr' lang='rus'>Russian</d>";
    QTest::newRow("English") << QByteArray("eng") << both << "English";
    QTest::newRow("Russian") << QByteArray("rus") << both << "Russian";
    QTest::newRow("any other language is English") << QByteArray("deu") << both << "English";
    QTest::newRow("a later one without language, English") << QByteArray("eng") << both + "<d type='long_descr'>All</d>"
                                                           << "All";
    QTest::newRow("a later one without language, Russian") << QByteArray("rus") << both + "<d type='long_descr'>All</d>"
                                                           << "All";
    QTest::newRow("a later one with an empty language")
        << QByteArray("rus") << both + "<d type='long_descr' lang=''>All</d>"
        << "All";
    QTest::newRow("an earlier one without language")
        << QByteArray("rus") << "<d type='long_descr'>All</d>" + both << "Russian";
    QTest::newRow("language in capitals")
        << QByteArray("rus") << QByteArray("<d type='long_descr' lang='RUS'>Russian</d>") << "";
    QTest::newRow("only the other language")
        << QByteArray("rus") << QByteArray("<d type='long_descr' lang='eng'>English</d>") << "";
}

void TestManifest::theLongDescriptionIsInTheBoxsLanguage()
{
    QFETCH(QByteArray, language);
    QFETCH(QByteArray, entries);
    QFETCH(QString, description);
    setLanguage(language);
    writeBoxFile(pluginManifest, manifest(entries));

    const PluginConfigParser parser((QDir(pluginDir)));

    QCOMPARE(parser.longDescription, description);
    QCOMPARE(parser.language, QString(language == "rus" ? "rus" : "eng"));
}

void TestManifest::theLastEntryWins_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QVariantMap>("fields");

    addRow("attribute", "<a type='big_icon' src='1'/><b type='big_icon' src='2'/>", {{"bigIcon", "2"}});
    addRow("a missing attribute clears", "<a type='big_icon' src='1'/><b type='big_icon'/>", {});
    addRow("a missing address clears", "<a type='homepage' src='1'/><b type='homepage'/>", {});
    addRow("text", "<a type='brief_descr'>1</a><b type='brief_descr'>2</b>", {{"briefDescription", "2"}});
    addRow("a comment before the text clears", "<a type='brief_descr'>1</a><b type='brief_descr'><!-- -->2</b>", {});
    addRow("an element before the text clears", "<a type='long_descr'>1</a><b type='long_descr'><i/>2</b>", {});
    addRow("the text ends at an element", "<a type='long_descr'>1<i/>2</a>", {{"longDescription", "1"}});
    addRow("an inner entry comes after the outer", "<a type='homepage' src='1'><b type='homepage' src='2'/></a>",
           {{"homePage", "2"}});
    addRow("standard definition is never taken back",
           "<a type='supports_sd' val='true'/><b type='supports_sd' val='false'/>", {{"supportsSd", true}});
    addRow("resolution", "<a type='resolution' width='1' height='2'/><a type='resolution' width='3' height='4'/>",
           {{"resolution", QSize(3, 4)}});
}

void TestManifest::theLastEntryWins()
{
    QFETCH(QByteArray, xml);
    QFETCH(QVariantMap, fields);
    writeBoxFile(pluginManifest, xml);

    QCOMPARE(changedFields(PluginConfigParser(QDir(pluginDir))), fields);
}

void TestManifest::theUsersManifestIsLaidOver_data()
{
    QTest::addColumn<QByteArray>("user");
    QTest::addColumn<QVariantMap>("fields");

    const QVariantMap plugin = {{"homePage", "h"}, {"resolution", QSize(1280, 720)}};
    QTest::newRow("resolution") << manifest("<size type='resolution' width='720' height='576'/>")
                                << QVariantMap({{"homePage", "h"}, {"resolution", QSize(720, 576)}});
    QTest::newRow("empty") << manifest("") << plugin;
    QTest::newRow("home page") << manifest("<a type='homepage' src='user'/>")
                               << QVariantMap({{"homePage", "user"}, {"resolution", QSize(1280, 720)}});
    QTest::newRow("a further entry") << manifest("<a type='big_icon' src='b'/>")
                                     << QVariantMap(
                                            {{"homePage", "h"}, {"resolution", QSize(1280, 720)}, {"bigIcon", "b"}});
}

void TestManifest::theUsersManifestIsLaidOver()
{
    QFETCH(QByteArray, user);
    QFETCH(QVariantMap, fields);
    writeBoxFile(pluginManifest,
                 manifest("<a type='homepage' src='h'/><size type='resolution' width='1280' height='720'/>"));
    writeBoxFile(userManifest, user);

    QCOMPARE(changedFields(PluginConfigParser(QDir(pluginDir))), fields);
}

void TestManifest::aBrokenManifestLeavesTheInitialValues_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<bool>("exists");

    QTest::newRow("missing") << QByteArray() << false;
    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("no XML") << QByteArray("homepage=h") << true;
    QTest::newRow("cut off behind an entry") << QByteArray("<plugin_config><a type='homepage' src='h'/>") << true;
}

void TestManifest::aBrokenManifestLeavesTheInitialValues()
{
    QFETCH(QByteArray, xml);
    QFETCH(bool, exists);
    if (exists)
        writeBoxFile(pluginManifest, xml);
    // Not read either.
    writeBoxFile(userManifest, manifest("<a type='big_icon' src='b'/>"));
    QString error;
    QVERIFY(!QDomDocument().setContent(xml, &error));
    const MessageLog log;

    QCOMPARE(changedFields(PluginConfigParser(QDir(pluginDir))), QVariantMap({{"valid", false}}));
    QCOMPARE(log.debugLines(), QStringList("parse error \"" + error + "\""));
}

void TestManifest::aBrokenUsersManifestLeavesThePluginsValues()
{
    writeBoxFile(pluginManifest, manifest("<a type='homepage' src='h'/>"));
    const QByteArray broken = "<plugin_config><a type='homepage' src='user'/>";
    writeBoxFile(userManifest, broken);
    QString error;
    QVERIFY(!QDomDocument().setContent(broken, &error));
    const MessageLog log;

    QCOMPARE(changedFields(PluginConfigParser(QDir(pluginDir))), QVariantMap({{"valid", false}, {"homePage", "h"}}));
    QCOMPARE(log.debugLines(), QStringList("parse error \"" + error + "\""));
}

void TestManifest::anOddFileIsNoManifest_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("what");
    for (const OddFile::Row &row : OddFile::all)
        QTest::newRow(row.name) << int(row.kind) << QString(row.what);
}

void TestManifest::anOddFileIsNoManifest()
{
    QFETCH(const int, kind);
    QFETCH(const QString, what);
    QVERIFY(OddFile::put(fromOutside(pluginManifest), OddFile::Kind(kind)));
    {
        const MessageLog log;
        QCOMPARE(changedFields(PluginConfigParser(QDir(pluginDir))), QVariantMap({{"valid", false}}));
        QCOMPARE(log.debugLines().filter("parse error").size(), 1);
        QCOMPARE(log.warnings().size(), 1);
        QVERIFY(log.warnings().constFirst().startsWith(pluginManifest + QString(" is ") + what));
    }
    QFile::remove(fromOutside(pluginManifest));
    QDir().rmdir(fromOutside(pluginManifest));
    writeBoxFile(pluginManifest, manifest("<a type='homepage' src='h'/>"));
    QVERIFY(OddFile::put(userManifest, OddFile::Kind(kind)));
    const MessageLog log;
    PluginConfigParser parser((QDir(pluginDir)));
    QCOMPARE(changedFields(parser), QVariantMap({{"homePage", "h"}}));
    QCOMPARE(log.warnings().size(), 1);
    QVERIFY(log.warnings().constFirst().startsWith(userManifest + QString(" is ") + what));
    // Nor is it waited for when the resolution is saved.
    parser.setResolution(QSize(720, 576));
    QVERIFY(parser.save());
    QCOMPARE(PluginConfigParser(QDir(pluginDir)).resolution,
             kind == OddFile::Gigabyte ? QSize(720, 576) : QSize(-1, -1));
    QCOMPARE(log.debugLines(), QStringList());
}

void TestManifest::theUsersFolderFollowsThePluginsPath_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QString>("user");

    const QString launcher = QCoreApplication::applicationDirPath();
    QTest::newRow("elsewhere") << "/sdk/plugin"
                               << "/home/user/config/plugins/sdk/plugin";
    QTest::newRow("with a slash at the end") << "/sdk/plugin/"
                                             << "/home/user/config/plugins/sdk/plugin";
    QTest::newRow("below the launcher's folder") << launcher + "/kavro"
                                                 << "/home/user/config/plugins/kavro";
    QTest::newRow("the launcher's folder") << launcher << "/home/user/config/plugins";
    QTest::newRow("the launcher's path twice") << launcher + "/a" + launcher + "/b"
                                               << "/home/user/config/plugins/a/b";
}

void TestManifest::theUsersFolderFollowsThePluginsPath()
{
    QFETCH(QString, plugin);
    QFETCH(QString, user);
    const MessageLog log; // there is no manifest

    QCOMPARE(QDir::cleanPath(PluginConfigParser(QDir(plugin)).userDir.path()), user);
}

void TestManifest::theDisplayModeChoosesASystemwideResolution_data()
{
    QTest::addColumn<QByteArray>("src");
    QTest::addColumn<QByteArray>("mode");
    QTest::addColumn<QSize>("resolution");

    QTest::newRow("systemwide, HD") << QByteArray("systemwide") << QByteArray("HD") << QSize(1920, 1080);
    QTest::newRow("systemwide, SD") << QByteArray("systemwide") << QByteArray("SD") << QSize(720, 576);
    QTest::newRow("own, HD") << QByteArray("") << QByteArray("HD") << QSize(1280, 720);
    QTest::newRow("own, SD") << QByteArray("") << QByteArray("SD") << QSize(1280, 720);
}

void TestManifest::theDisplayModeChoosesASystemwideResolution()
{
    QFETCH(QByteArray, src);
    QFETCH(QByteArray, mode);
    QFETCH(QSize, resolution);
    setDisplayMode(mode);
    writeBoxFile(pluginManifest,
                 manifest("<a type='resolution' src='" + src + "' width='1280' height='720'>"
                          + "<b id='HD' width='1920' height='1080'/><b id='SD' width='720' height='576'/></a>"));

    QCOMPARE(PluginConfigParser(QDir(pluginDir)).currentResolution(), resolution);
}

void TestManifest::settingTheResolutionWritesNothing()
{
    writeBoxFile(pluginManifest, manifest("<size type='resolution' width='1280' height='720'/>"));
    PluginConfigParser parser((QDir(pluginDir)));

    QVERIFY(parser.setResolution(QSize(720, 576)));
    QCOMPARE(parser.resolution, QSize(720, 576));
    QVERIFY(!QFile::exists(userManifest));
}

void TestManifest::savingWritesTheResolutionAlone()
{
    writeBoxFile(pluginManifest, manifest("<a type='homepage' src='h'/>"));
    writeBoxFile(
        userManifest,
        manifest("<a type='homepage' src='user'/><x>a longer text than the new one</x>" + QByteArray(500, ' ')));
    PluginConfigParser parser((QDir(pluginDir)));
    parser.setResolution(QSize(720, 576));

    QVERIFY(parser.save());

    const QByteArray written = boxFile(userManifest);
    QVERIFY2(written.startsWith("<!DOCTYPE kavro_mz412_plugin_configuration>\n<plugin_config>\n    <size "),
             written.constData());
    QVERIFY2(written.endsWith("/>\n</plugin_config>\n"), written.constData());
    QDomDocument document;
    QVERIFY(document.setContent(written));
    const QDomElement root = document.documentElement();
    QCOMPARE(root.childNodes().count(), 1);
    const QDomElement size = root.firstChildElement("size");
    QCOMPARE(size.attributes().count(), 3);
    QCOMPARE(size.attribute("type"), QString("resolution"));
    QCOMPARE(size.attribute("width"), QString("720"));
    QCOMPARE(size.attribute("height"), QString("576"));
}

void TestManifest::aSavedResolutionIsReadAgain()
{
    writeBoxFile(pluginManifest,
                 manifest("<a type='homepage' src='h'/><size type='resolution' width='1280' height='720'/>"));
    PluginConfigParser parser((QDir(pluginDir)));
    parser.setResolution(QSize(1920, 1080));
    QVERIFY(!QFileInfo::exists("/home/user/config/plugins"));

    QVERIFY(parser.save());
    QCOMPARE(changedFields(PluginConfigParser(QDir(pluginDir))),
             QVariantMap({{"homePage", "h"}, {"resolution", QSize(1920, 1080)}}));
}

void TestManifest::savingSucceedsEvenWhereNothingCanBeWritten()
{
    // A file where the folder should be.
    writeBoxFile("/home/user/config/plugins", "");
    writeBoxFile(pluginManifest, manifest(""));
    PluginConfigParser parser((QDir(pluginDir)));

    const MessageLog log; // the toolkit complains
    QVERIFY(parser.save());
    QFile::remove("/home/user/config/plugins");
}

void TestManifest::theDocumentIsTheOneReadLast()
{
    writeBoxFile(pluginManifest, "<plugin/>");
    QCOMPARE(PluginConfigParser(QDir(pluginDir)).document.documentElement().tagName(), QString("plugin"));

    writeBoxFile(userManifest, "<user/>");
    PluginConfigParser parser((QDir(pluginDir)));
    QCOMPARE(parser.document.documentElement().tagName(), QString("user"));
    parser.save();
    QCOMPARE(parser.document.documentElement().tagName(), QString("user"));
}

void TestManifest::thereIsOneParserUntilItIsDestroyed()
{
    writeBoxFile(pluginManifest, manifest("<a type='homepage' src='first'/>"));
    PluginConfigParser *const parser = PluginConfigParser::instance(QDir(pluginDir));
    QCOMPARE(parser->homePage, QString("first"));

    writeBoxFile(pluginManifest, manifest("<a type='homepage' src='second'/>"));
    QCOMPARE(PluginConfigParser::instance(QDir("/elsewhere")), parser);
    QCOMPARE(parser->homePage, QString("first"));

    PluginConfigParser::destroyInstance();
    PluginConfigParser::destroyInstance();
    QCOMPARE(PluginConfigParser::instance(QDir(pluginDir))->homePage, QString("second"));
    PluginConfigParser::destroyInstance();
}

QTEST_GUILESS_MAIN(TestManifest)
#include "tst_manifest.moc"
