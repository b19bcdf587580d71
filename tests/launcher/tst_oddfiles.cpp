// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"
#include "tests/support/OddFile.h"

#include <QDir>
#include <QTest>

namespace {

const char *const manifest = "sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml";
const char *const userManifest = "home/user/config/plugins/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml";
const char *const certificates = "etc/ssl/certs/ca-bundle.crt";
const char *const pageDump = "tmp/page.html";
const char *const pageLog = "tmp/jsbrowser.log";

// Files that are read with any page, by the plugin or the platform library.
const char *const readFiles[] = {"etc/settings.xml",
                                 "etc/stbjsapi_debug",
                                 certificates,
                                 "home/user/config/boot_params",
                                 "home/user/config/config_files/qtstbapi.conf",
                                 "home/user/config/serial_number",
                                 "home/user/version",
                                 userManifest};

// Has all of them opened.
const char useOfAllFiles[] = "var player = StbMedia.CreatePlayer(); StbMedia.ClosePlayer(player);"
                             "player = StbMedia.CreatePlayer(); StbMedia.ClosePlayer(player);"
                             "StbDisplay.GetBootParamValue('buf_time_udp'); StbDisplay.SerialNumber;"
                             "stb_display.FirmwareVersion; StbPVR.GetRecordsList();"
                             "StbDisplay.Log('a line'); StbDisplay.GetBootParamValue('dfbres');"
                             "try { var request = new XMLHttpRequest(); request.open('GET', 'https://127.0.0.1:1/',"
                             "false); request.send(); } catch (e) {}";

// The toolkit looks into the certificates as well, and stops after two gigabytes of an endless device. The sanitizers
// would need half a minute for them.
bool isTried(const char *file, int kind)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return file != certificates || kind != OddFile::EndlessDevice;
#else
    Q_UNUSED(file)
    Q_UNUSED(kind)
    return true;
#endif
}

} // namespace

/// Boxes whose files are something else: the start goes on as without them, and says what is wrong.
class TestOddFiles : public DeskBoxTest
{
    Q_OBJECT

private slots:
    void init();

    void whatIsReadIsLeftOut_data() { addKinds(); }
    void whatIsReadIsLeftOut();
    void whatIsWrittenIsLeftOut_data() { addKinds(); }
    void whatIsWrittenIsLeftOut();
    void withoutAManifestTheBoxIsEmpty_data() { addKinds(); }
    void withoutAManifestTheBoxIsEmpty();
    void aTraceLevelThatIsNoneIsLeftAsItIs_data() { addKinds(); }
    void aTraceLevelThatIsNoneIsLeftAsItIs();
    void theTraceLevelIsNotRestoredThroughALink();
    void aWriteBeyondTheLimitOfFilesIsAFailedWrite();
    void aResolutionThatShowsNothingIsPutAside_data();
    void aResolutionThatShowsNothingIsPutAside();
    void aManifestsOwnResolutionThatShowsNothingIsSaid();

private:
    static void addKinds();
    QString inBox(const char *path) const { return m_box + '/' + path; }
    /// The lines that say what a file of the box is.
    int linesAbout(const char *path, const QByteArray &what);
};

void TestOddFiles::addKinds()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("what");
    for (const OddFile::Row &row : OddFile::all)
        QTest::newRow(row.name) << int(row.kind) << QByteArray(row.what);
}

int TestOddFiles::linesAbout(const char *path, const QByteArray &what)
{
    return m_program->errors().count("/" + QByteArray(path) + " is " + what + ", so nothing is ");
}

void TestOddFiles::init()
{
    setUp();
    QCOMPARE(run({"--exit-after", "0"}), 0); // makes the box
    m_program.reset(new Program("bin/kavro-box"));
    m_server->serve("/", page(QByteArray(useOfAllFiles) + "tell('alive ' + innerWidth + 'x' + innerHeight); leave();"));
}

void TestOddFiles::whatIsReadIsLeftOut()
{
    QFETCH(const int, kind);
    QFETCH(const QByteArray, what);
    for (const char *file : readFiles)
        QVERIFY2(!isTried(file, kind) || OddFile::put(inBox(file), OddFile::Kind(kind)), file);
    QVERIFY(OddFile::put(inBox("home/user/config/records.sqlite"), OddFile::Kind(kind)));

    QCOMPARE(run({m_server->url("/").toString()}), 0);
    QCOMPARE(told(), QStringList("alive 1280x720"));
    for (const char *file : readFiles)
        QVERIFY2(linesAbout(file, what) == int(isTried(file, kind)), file);
    QCOMPARE(m_program->errors().count("no recording schedule: /home/user/config/records.sqlite is "), 1);
    QVERIFY(!m_program->errors().contains("the page's script"));
}

void TestOddFiles::whatIsWrittenIsLeftOut()
{
    QFETCH(const int, kind);
    QFETCH(const QByteArray, what);
    QVERIFY(OddFile::put(inBox(pageDump), OddFile::Kind(kind)));
    QVERIFY(OddFile::put(inBox(pageLog), OddFile::Kind(kind)));

    QCOMPARE(run({"--trace", m_server->url("/").toString()}), 0);
    QCOMPARE(told(), QStringList("alive 1280x720"));
    const bool isEmptied = kind == OddFile::Gigabyte;
    for (const char *file : {pageDump, pageLog}) {
        QVERIFY2(linesAbout(file, what) == (isEmptied ? 0 : 1), file);
        QCOMPARE(QFileInfo(inBox(file)).isFile() && QFileInfo(inBox(file)).size() < 10000, isEmptied);
    }
    QVERIFY(!m_program->errors().contains("the page's script"));
}

void TestOddFiles::withoutAManifestTheBoxIsEmpty()
{
    QFETCH(const int, kind);
    QFETCH(const QByteArray, what);
    QVERIFY(QFile::remove(inBox(manifest)));
    QVERIFY(OddFile::put(inBox(manifest), OddFile::Kind(kind)));

    QCOMPARE(run({"--exit-after", "0.5", m_server->url("/").toString()}), 0);
    QVERIFY(linesAbout(manifest, what) > 0);
    QVERIFY(m_program->errors().contains("Malformed Manifest"));
    QVERIFY(!m_program->errors().contains("the page's script"));
}

void TestOddFiles::aTraceLevelThatIsNoneIsLeftAsItIs()
{
    QFETCH(const int, kind);
    QFETCH(const QByteArray, what);
    QVERIFY(OddFile::put(inBox("etc/stbjsapi_debug"), OddFile::Kind(kind)));
    const qint64 size = QFileInfo(inBox("etc/stbjsapi_debug")).size();

    QCOMPARE(run({"--trace", m_server->url("/").toString()}), 0);
    QVERIFY(m_program->errors().contains("/etc/stbjsapi_debug cannot be written, so nothing is traced\n"));
    QCOMPARE(linesAbout("etc/stbjsapi_debug", what), 1);
    QCOMPARE(QFileInfo(inBox("etc/stbjsapi_debug")).size(), size);
}

void TestOddFiles::theTraceLevelIsNotRestoredThroughALink()
{
    const QString outside = m_folder->filePath("outside");
    QVERIFY(writeFile(outside, "1\n"));
    QVERIFY(writeFile(inBox("etc/stbjsapi_debug"), "0\n"));
    m_server->serve("/", page("tell('ready')"));
    begin({m_server->url("/").toString(), "--exit-after", "2"});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList("ready"), patience);
    QVERIFY(QFile::remove(inBox("etc/stbjsapi_debug")) && QFile::link(outside, inBox("etc/stbjsapi_debug")));
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(contentOf(outside), QByteArray("1\n"));
}

void TestOddFiles::aWriteBeyondTheLimitOfFilesIsAFailedWrite()
{
    constexpr int limit = 128; // KiB
    m_server->serve("/",
                    page("for (var i = 0; i < 20; ++i) StbDisplay.Log(new Array(20000).join('x'));"
                         "tell('alive'); leave();"));
    m_program->setProgram("bash");
    m_program->setArguments({"-c", QString("ulimit -f %1; exec \"$@\"").arg(limit), "bash",
                             Program::inBuildTree("bin/kavro-box"), "--headless", "--box", m_box,
                             m_server->url("/").toString()});
    m_program->start();
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(told(), QStringList("alive"));
    const qint64 size = QFileInfo(inBox(pageLog)).size();
    QVERIFY2(size > 100000 && size <= limit * 1024, qPrintable(QString::number(size)));
}

void TestOddFiles::aResolutionThatShowsNothingIsPutAside_data()
{
    QTest::addColumn<QString>("value"); // of "dfbres"
    QTest::addColumn<QString>("size");  // of the page at the next start
    QTest::addColumn<QString>("said");
    QTest::newRow("nothing") << "0x0"
                             << "1280x720"
                             << "0x0";
    QTest::newRow("the largest number") << "2147483647x2147483647"
                                        << "1280x720"
                                        << "2147483647x2147483647";
    QTest::newRow("a pixel") << "1x1"
                             << "1280x720"
                             << "1x1";
    QTest::newRow("a width beyond numbers") << "99999999999x720"
                                            << "1280x720"
                                            << "0x720";
    QTest::newRow("too wide") << "99999x720"
                              << "1280x720"
                              << "99999x720";
    QTest::newRow("too high") << "1280x99999"
                              << "1280x720"
                              << "1280x99999";
    QTest::newRow("the smallest") << "320x240"
                                  << "320x240" << QString();
    QTest::newRow("the largest") << "7680x4320"
                                 << "7680x4320" << QString();
    QTest::newRow("negative, which is refused") << "-5x-6"
                                                << "1280x720" << QString();
    QTest::newRow("words, which are refused") << "widexhigh"
                                              << "1280x720" << QString();
}

void TestOddFiles::aResolutionThatShowsNothingIsPutAside()
{
    QFETCH(const QString, value);
    QFETCH(const QString, said);
    m_server->serve("/", page("StbDisplay.SetBootParamValue('dfbres', '" + value.toUtf8() + "'); leave();"));
    QCOMPARE(run({m_server->url("/").toString()}), 0);

    m_program.reset(new Program("bin/kavro-box"));
    m_server->serve("/", page("tell(innerWidth + 'x' + innerHeight); leave();"));
    QCOMPARE(run({m_server->url("/").toString()}), 0);
    QTEST(told().join(' '), "size");
    const QByteArray line = "kavro-box: /" + QByteArray(userManifest) + " has a resolution of " + said.toUtf8()
        + ", at which the page could not be seen; it is now /" + userManifest
        + ".unusable, and the plugin's own resolution is used\n";
    QCOMPARE(m_program->errors().contains(line), !said.isEmpty());
    QCOMPARE(QFile::exists(inBox(userManifest) + ".unusable"), !said.isEmpty());
}

void TestOddFiles::aManifestsOwnResolutionThatShowsNothingIsSaid()
{
    QVERIFY(writeFile(inBox(manifest),
                      "<plugin_config><size type=\"resolution\" width=\"0\" height=\"0\"/>"
                      "</plugin_config>\n"));
    QCOMPARE(run({"--exit-after", "0"}), 0);
    QVERIFY(m_program->errors().contains("/" + QByteArray(manifest)
                                         + " has a resolution of 0x0, at which the page could not be seen; "
                                           "give it one such as 1280x720\n"));
}

QTEST_GUILESS_MAIN(TestOddFiles)

#include "tst_oddfiles.moc"
