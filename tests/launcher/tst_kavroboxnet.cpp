// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"
#include "OwnNetwork.h"

#include <QTcpServer>
#include <QTest>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

struct Way
{
    const char *name;
    const char *script; // with the host and port to reach for %1
    const char *host = "127.0.0.1";
    const char *said = "127.0.0.1"; // the host as the desk box says it
};

const char xhr[] = "var r = new XMLHttpRequest(); r.open('GET', 'http://%1/'); r.send()";

// How pages and what they start reach an address.
const Way ways[] = {
    {"request of a script", xhr},
    {"request that is waited for", "var r = new XMLHttpRequest(); r.open('GET', 'http://%1/', false); r.send()"},
    {"upload", "var r = new XMLHttpRequest(); r.open('PUT', 'http://%1/'); r.send('text')"},
    {"image", "new Image().src = 'http://%1/'"},
    {"frame", "add('iframe').src = 'http://%1/'"},
    {"script", "add('script').src = 'http://%1/'"},
    {"style sheet", "var l = add('link'); l.rel = 'stylesheet'; l.href = 'http://%1/'"},
    {"object", "var o = document.createElement('object'); o.data = 'http://%1/'; document.body.appendChild(o)"},
    {"form",
     "var d = add('iframe').contentDocument; d.write('<form method=post action=http://%1/></form>');"
     "d.forms[0].submit()"},
    {"redirection", "new Image().src = '/redirect?http://%1/'"},
    {"second redirection", "new Image().src = '/redirect?/redirect?http://%1/'"},
    {"prefetched page", "var l = add('link'); l.rel = 'prefetch'; l.href = 'http://%1/'"},
    {"video of the page", "var v = add('video'); v.src = 'http://%1/film.mp4'; v.play()"},
    {"web socket", "sockets = (window.sockets || []).concat(new WebSocket('ws://%1/'))"},
    {"event source", "source = new EventSource('http://%1/')"},
    {"secure request", "var r = new XMLHttpRequest(); r.open('GET', 'https://%1/'); r.send()"},
    {"file transfer", "new Image().src = 'ftp://%1/picture.png'"},
    {"name in the file of hosts", xhr, "inside.example"},
    {"name of a name server", xhr, "found.example"},
    {"name in another spelling", xhr, "INSIDE.example"},
    {"web socket to a name", "named = new WebSocket('ws://%1/')", "inside.example"},
    {"another address of this PC", xhr, "127.1.2.3", "127.1.2.3"},
    {"no address", xhr, "0.0.0.0", "0.0.0.0"},
    {"number", xhr, "2130706433"},
    {"mapped address", xhr, "[::ffff:127.0.0.1]"},
    {"player", "StbMedia.PlayHttp(StbMedia.CreatePlayer(), 'http://%1/film.mp4', '')"},
    {"player of a name", "StbMedia.PlayHttp(StbMedia.CreatePlayer(), 'http://%1/film.mp4', '')", "inside.example"},
    {"player that is redirected",
     "StbMedia.PlayHttp(StbMedia.CreatePlayer(), location.origin + '/redirect?http://%1/film.mp4', '')"},
    {"player of a playlist",
     "StbMedia.PlayHttp(StbMedia.CreatePlayer(), location.origin + '/list?http://%1/a.ts', '')"},
    {"player of a stream", "StbMedia.PlayStream(StbMedia.CreatePlayer(), 'tcp://%1')"},
    {"player with RTSP", "StbMedia.PlayRtsp(StbMedia.CreatePlayer(), 'rtsp://%1/film', 0, 1)"},
    {"peer of a magnet link",
     "StbMedia.PlayMagnet(StbMedia.CreatePlayer(), 'magnet:?xt=urn:btih:0123456789abcdef0123456789abcdef01234567"
     "&x.pe=%1', '', 0, 0, 0, 0)"},
    {"tracker of a magnet link",
     "StbMedia.PlayMagnet(StbMedia.CreatePlayer(), 'magnet:?xt=urn:btih:1123456789abcdef0123456789abcdef01234567"
     "&tr=udp%3A%2F%2F%1%2Fannounce', '', 0, 0, 0, 0)"},
    {"recording", "StbPVR.AddRecord('http://%1/film.ts', 'film.ts', new Date(), 60)"},
    {"firmware", "StbDisplay.UpgradeFirmware('http://%1/image')"},
};
const int wayCount = int(std::size(ways));

// Milliseconds for what must not wait for a name server, which is asked for a minute.
constexpr int soon = 20000;

// Ten seconds of silence.
QByteArray silenceFile()
{
    const QByteArray samples(80000, '\x80');
    return QByteArray::fromHex("52494646a4380100 57415645666d7420 10000000 01000100 401f0000 401f0000 01000800 64617461"
                               "80380100")
        + samples;
}

// A port of this PC that knows whether anybody has come.
class Door
{
public:
    Door()
    {
        m_server.listen(QHostAddress::AnyIPv4);
        m_datagrams.bind(QHostAddress::AnyIPv4, m_server.serverPort());
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            m_isReached = true;
            QTcpSocket *socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            socket->write("HTTP/1.0 200 Test\r\nContent-Type: text/plain\r\nContent-Length: 0\r\n\r\n");
            socket->disconnectFromHost();
        });
        QObject::connect(&m_datagrams, &QUdpSocket::readyRead, &m_datagrams, [this] { m_isReached = true; });
    }

    quint16 port() const { return m_server.serverPort(); }
    bool isReached() const { return m_isReached; }

private:
    QTcpServer m_server;
    QUdpSocket m_datagrams;
    bool m_isReached = false;
};

} // namespace

/// What of this PC and its network the desk box lets pages and players reach: the box is in a network of the test's
/// own.
class TestKavroBoxNet : public DeskBoxTest
{
    Q_OBJECT

public:
    /// reason: why there is no network of its own, or nothing.
    explicit TestKavroBoxNet(const QString &reason)
        : m_reason(reason)
    {
    }

private slots:
    void initTestCase();
    void init();

    void aPageFromElsewhereReachesNothingHere_data();
    void aPageFromElsewhereReachesNothingHere();
    void aPageFromHereReachesAll_data();
    void aPageFromHereReachesAll();
    void theFirstPageDecides_data();
    void theFirstPageDecides();
    void theHomePageOfTheManifestDecidesToo();
    void anAllowedHostIsReached_data();
    void anAllowedHostIsReached();
    void aRefusalIsSaidOnceAndInThePagesConsole();
    void aRefusedPageHearsOfAnError();
    void leavingDoesNotWaitForANameServer_data();
    void leavingDoesNotWaitForANameServer();
    void aRestartDoesNotWaitForANameServer();
    void whatComesAfterSevenDeadSourcesPlays_data();
    void whatComesAfterSevenDeadSourcesPlays();

private:
    struct Outcome
    {
        QVector<quint16> ports; // for each way, as what follows
        QVector<bool> isReached;
        QByteArray errors;
        int status = -1;
    };

    // What a page at this address can do by all ways at once.
    Outcome tryAll(const QHostAddress &address);
    static QByteArray refusal(const QByteArray &host, quint16 port);
    static QByteArray requestFor(const QByteArray &host, const Door &door);
    bool isSaid(const QByteArray &host, const Door &door);

    const QString m_reason;
    QTemporaryDir m_files;
    QScopedPointer<NameServer> m_names;
    Outcome m_fromElsewhere;
    Outcome m_fromHere;
};

void TestKavroBoxNet::initTestCase()
{
    if (!m_reason.isEmpty()) {
        QTest::qSkip(qPrintable(m_reason), __FILE__, __LINE__);
        return;
    }
    const QMap<QString, QByteArray> files = {
        {"/etc/hosts", "127.0.0.1 localhost inside.example\n203.0.113.7 portal.example\n"},
        {"/etc/resolv.conf", QByteArray("nameserver ") + NameServer::address + "\noptions timeout:60\n"},
        {"/etc/nsswitch.conf", "passwd: files\ngroup: files\nhosts: files dns\n"},
    };
    for (auto file = files.begin(); file != files.end(); ++file) {
        const QString own = m_files.path() + file.key();
        QVERIFY(writeFile(own, file.value()));
        QVERIFY2(OwnNetwork::replaceFile(file.key(), own), qPrintable(file.key()));
    }
    m_names.reset(new NameServer("found.example", QHostAddress::LocalHost));
    QVERIFY(m_names->isListening());

    m_fromElsewhere = tryAll(QHostAddress(OwnNetwork::elsewhere));
    m_fromHere = tryAll(QHostAddress::LocalHost);
}

// Pages are asked for at any address.
void TestKavroBoxNet::init()
{
    setUp();
    m_server.reset(new HttpServer(QHostAddress::AnyIPv4));
}

TestKavroBoxNet::Outcome TestKavroBoxNet::tryAll(const QHostAddress &address)
{
    setUp();
    m_server.reset(new HttpServer(address));
    std::vector<std::unique_ptr<Door>> doors;
    QByteArray script = "function add(name) { var element = document.createElement(name);"
                        "document.body.appendChild(element); return element; } window.onload = function () {";
    for (const Way &way : ways) {
        doors.push_back(std::make_unique<Door>());
        const QByteArray target = QByteArray(way.host) + ':' + QByteArray::number(doors.back()->port());
        for (const char *path : {"", "film.mp4"})
            m_server->redirect("/redirect?http://" + target + '/' + path, QUrl("http://" + target + '/' + path));
        m_server->redirect("/redirect?/redirect?http://" + target + '/', QUrl("/redirect?http://" + target + '/'));
        m_server->serve("/list?http://" + target + "/a.ts",
                        {"#EXTM3U\n#EXT-X-TARGETDURATION:9\n#EXTINF:9,\nhttp://" + target + "/a.ts\n#EXT-X-ENDLIST\n",
                         "application/vnd.apple.mpegurl"});
        script +=
            "try { (function () { " + QByteArray(way.script).replace("%1", target) + " })(); } catch (error) { }\n";
    }
    m_server->serve("/", page(script + '}'));

    // The engine leaves some memory of its ftp requests and films behind.
    m_program->setVariable("ASAN_OPTIONS", qEnvironmentVariable("ASAN_OPTIONS") + ":detect_leaks=0");
    // Of the PC's engine, which has more ways.
    begin({"--engine", "pc", m_server->url().toString()});
    const auto isDone = [this, &doors] {
        for (int i = 0; i < wayCount; ++i) {
            if (!doors[i]->isReached() && !isSaid(ways[i].said, *doors[i]))
                return false;
        }
        return true;
    };
    if (!QTest::qWaitFor(isDone, patience))
        qInfo("The box has tried not all ways.");
    m_program->terminate();
    Outcome outcome;
    outcome.status = m_program->finish();
    outcome.errors = m_program->errors();
    if (outcome.status != 0)
        qInfo("The box ended with %d and said:\n%s", outcome.status, outcome.errors.constData());
    for (const auto &door : doors) {
        outcome.ports += door->port();
        outcome.isReached += door->isReached();
    }
    return outcome;
}

QByteArray TestKavroBoxNet::refusal(const QByteArray &host, quint16 port)
{
    return "kavro-box: " + host + ':' + QByteArray::number(port)
        + " is on this PC or its network, and refused to pages ";
}

bool TestKavroBoxNet::isSaid(const QByteArray &host, const Door &door)
{
    return m_program->errors().contains(refusal(host, door.port()));
}

void TestKavroBoxNet::aPageFromElsewhereReachesNothingHere_data()
{
    QTest::addColumn<int>("way");
    for (int i = 0; i < wayCount; ++i)
        QTest::newRow(ways[i].name) << i;
}

void TestKavroBoxNet::aPageFromElsewhereReachesNothingHere()
{
    QFETCH(int, way);
    QVERIFY(!m_fromElsewhere.isReached[way]);
    QCOMPARE(m_fromElsewhere.errors.count(refusal(ways[way].said, m_fromElsewhere.ports[way])), 1);
    QCOMPARE(m_fromElsewhere.status, 0);
}

void TestKavroBoxNet::aPageFromHereReachesAll_data()
{
    aPageFromElsewhereReachesNothingHere_data();
}

void TestKavroBoxNet::aPageFromHereReachesAll()
{
    QFETCH(int, way);
    QVERIFY(m_fromHere.isReached[way]);
    QVERIFY2(!m_fromHere.errors.contains("is on this PC or its network"), m_fromHere.errors.constData());
    QCOMPARE(m_fromHere.status, 0);
}

void TestKavroBoxNet::theFirstPageDecides_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<bool>("isReached");

    QTest::newRow("this PC") << "http://127.0.0.1:%1/" << true;
    QTest::newRow("another address of this PC") << "http://127.3.2.1:%1/" << true;
    QTest::newRow("name of this PC") << "http://localhost:%1/" << true;
    QTest::newRow("name in the file of hosts") << "http://inside.example:%1/" << true;
    QTest::newRow("name of a name server") << "http://Found.example:%1/" << true;
    QTest::newRow("file") << "%2" << true;
    QTest::newRow("address of a file") << "file:///mnt/stb/page.html" << true;
    QTest::newRow("elsewhere") << "http://203.0.113.7:%1/" << false;
    QTest::newRow("name from elsewhere") << "http://portal.example:%1/" << false;
}

void TestKavroBoxNet::theFirstPageDecides()
{
    QFETCH(QString, page);
    QFETCH(bool, isReached);
    const Door door;
    const QByteArray html = "<script>" + requestFor("127.0.0.1", door) + "</script>";
    const QString file = m_folder->filePath("page.html");
    QVERIFY(writeFile(file, html));
    QVERIFY(writeFile(m_box + "/mnt/stb/page.html", html));
    m_server->serve("/", html);
    begin({page.replace("%1", QString::number(m_server->port())).replace("%2", file)});
    QTRY_VERIFY_WITH_TIMEOUT(door.isReached() || isSaid("127.0.0.1", door), patience);
    QCOMPARE(door.isReached(), isReached);
}

void TestKavroBoxNet::theHomePageOfTheManifestDecidesToo()
{
    const Door door;
    m_server->serve("/", "<script>" + requestFor("127.0.0.1", door) + "</script>");
    const QByteArray home = "http://203.0.113.7:" + QByteArray::number(m_server->port()) + '/';
    QVERIFY(writeFile(m_box + "/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml",
                      "<m><p type='homepage' src='" + home + "'/></m>"));
    begin({});
    QTRY_VERIFY_WITH_TIMEOUT(door.isReached() || isSaid("127.0.0.1", door), patience);
    QVERIFY(!door.isReached());
}

void TestKavroBoxNet::anAllowedHostIsReached_data()
{
    QTest::addColumn<QString>("allowed");
    QTest::addColumn<QByteArray>("host");
    QTest::addColumn<bool>("isReached");

    QTest::newRow("address") << "127.0.0.1" << QByteArray("127.0.0.1") << true;
    QTest::newRow("address and port") << "127.0.0.1:%1" << QByteArray("127.0.0.1") << true;
    QTest::newRow("address, by a name") << "127.0.0.1:%1" << QByteArray("inside.example") << true;
    QTest::newRow("another port") << "127.0.0.1:1" << QByteArray("127.0.0.1") << false;
    QTest::newRow("another address") << "127.0.0.2" << QByteArray("127.0.0.1") << false;
    QTest::newRow("name") << "inside.example" << QByteArray("inside.example") << true;
    QTest::newRow("name and port") << "found.example:%1" << QByteArray("found.example") << true;
    QTest::newRow("name that leads there too") << "inside.example" << QByteArray("found.example") << true;
    QTest::newRow("name of another address") << "portal.example" << QByteArray("inside.example") << false;
    QTest::newRow("name that there is not") << "nowhere.example" << QByteArray("inside.example") << false;
}

void TestKavroBoxNet::anAllowedHostIsReached()
{
    QFETCH(QString, allowed);
    QFETCH(QByteArray, host);
    QFETCH(bool, isReached);
    const Door door;
    m_server->serve("/", "<script>" + requestFor(host, door) + "</script>");
    begin({"--allow-net", "192.0.2.1", "--allow-net", allowed.contains("%1") ? allowed.arg(door.port()) : allowed,
           QString("http://203.0.113.7:%1/").arg(m_server->port())});
    QTRY_VERIFY_WITH_TIMEOUT(door.isReached() || isSaid("127.0.0.1", door), patience);
    QCOMPARE(door.isReached(), isReached);
}

void TestKavroBoxNet::aRefusalIsSaidOnceAndInThePagesConsole()
{
    const Door door;
    m_server->serve("/",
                    page("console.warn = function (text) { tell(text); }; var count = 0; function ask() {"
                         "if (++count > 20) { setTimeout(function () { tell('end'); leave(); }, 100); return; }"
                         "var r = new XMLHttpRequest(); r.onerror = ask; r.open('GET', 'http://127.0.0.1:"
                         + QByteArray::number(door.port()) + "/'); r.send(); } window.onload = ask;"));
    QCOMPARE(run({QString("http://203.0.113.7:%1/").arg(m_server->port())}), 0);

    const QByteArray address = "127.0.0.1:" + QByteArray::number(door.port());
    const QByteArray sentence = address
        + " is on this PC or its network, and refused to pages from 203.0.113.7; --allow-net " + address + " allows it";
    QCOMPARE(m_program->errors().count("kavro-box: " + sentence + '\n'), 1);
    QCOMPARE(m_program->errors().count(sentence), 1);
    // Once more when the page has loaded: what comes first may be in the console of the page before.
    QStringList warnings = told();
    QCOMPARE(warnings.takeLast(), QString("end"));
    QVERIFY2(warnings.size() == 1 || warnings.size() == 2, qPrintable(warnings.join('\n')));
    for (const QString &warning : qAsConst(warnings))
        QCOMPARE(warning, QString(sentence));
}

void TestKavroBoxNet::aRefusedPageHearsOfAnError()
{
    const Door door;
    const QByteArray port = QByteArray::number(door.port());
    m_server->serve("/",
                    page("window.onload = function () { var r = new XMLHttpRequest();"
                         "r.onerror = function () { tell('request'); }; r.open('GET', 'http://127.0.0.1:"
                         + port
                         + "/'); r.send(); var i = new Image(); i.onerror = function () { tell('image'); };"
                           "i.src = 'http://127.0.0.1:"
                         + port + "/i.png'; var s = new WebSocket('ws://127.0.0.1:" + port
                         + "/'); s.onclose = function () { tell('socket'); }; }"));
    begin({"--engine", "pc", QString("http://203.0.113.7:%1/").arg(m_server->port())});
    QTRY_COMPARE_WITH_TIMEOUT(told().size(), 3, patience);
    for (const char *what : {"request", "image", "socket"})
        QVERIFY2(told().contains(what), what);
    QVERIFY(!door.isReached());
}

void TestKavroBoxNet::leavingDoesNotWaitForANameServer_data()
{
    QTest::addColumn<QByteArray>("script");
    const auto row = [](const char *name, const char *script) { QTest::newRow(name) << QByteArray(script); };
    row("image", "new Image().src = 'http://silent.example/'");
    row("request of a script", "var r = new XMLHttpRequest(); r.open('GET', 'http://silent.example/'); r.send()");
    row("player", "StbMedia.PlayHttp(StbMedia.CreatePlayer(), 'http://silent.example/film.mp4', '')");
    row("player with RTSP", "StbMedia.PlayRtsp(StbMedia.CreatePlayer(), 'rtsp://silent.example/film', 0, 1)");
    row("tracker of a magnet link",
        "StbMedia.PlayMagnet(StbMedia.CreatePlayer(), 'magnet:?xt=urn:btih:1123456789abcdef0123456789abcdef01234567"
        "&tr=udp%3A%2F%2Fsilent.example%3A80%2Fannounce', '', 0, 0, 0, 0)");
    row("recording", "StbPVR.AddRecord('http://silent.example/film.ts', 'film.ts', new Date(), 60)");
    row("firmware", "StbDisplay.UpgradeFirmware('http://silent.example/image')");
}

void TestKavroBoxNet::leavingDoesNotWaitForANameServer()
{
    QFETCH(QByteArray, script);
    const int before = m_names->unanswered();
    m_server->serve("/", page("window.onload = function () { " + script + " }"));
    begin({m_server->url().toString()});
    QTRY_VERIFY_WITH_TIMEOUT(m_names->unanswered() > before, patience);
    m_program->terminate();
    QTRY_COMPARE_WITH_TIMEOUT(m_program->state(), QProcess::NotRunning, soon);
    QCOMPARE(m_program->finish(), 0);
}

void TestKavroBoxNet::aRestartDoesNotWaitForANameServer()
{
    m_server->serve("/",
                    page("window.onload = function () { new Image().src = 'http://silent.example/';"
                         "setTimeout(function () { StbDisplay.Reboot(); }, 500); }"));
    begin({m_server->url().toString()});
    QTRY_VERIFY_WITH_TIMEOUT(!m_server->requestsFor("/").isEmpty(), patience);
    const int before = m_names->unanswered();
    QTRY_VERIFY_WITH_TIMEOUT(m_names->unanswered() > before, patience);
    QTRY_VERIFY_WITH_TIMEOUT(m_server->requestsFor("/").size() > 1, soon);
}

void TestKavroBoxNet::whatComesAfterSevenDeadSourcesPlays_data()
{
    QTest::addColumn<QByteArray>("play");
    QTest::newRow("names that nobody answers")
        << QByteArray("PlayHttp(player, 'http://no' + i + '.silent.example/a', '')");
    QTest::newRow("magnet links with such a tracker")
        << QByteArray("PlayMagnet(player, 'magnet:?xt=urn:btih:0123456789abcdef0123456789abcdef0123456' + i +"
                      "'&tr=udp%3A%2F%2Fsilent.example%3A80%2Fannounce', '', 0, 0, 0, 0)");
}

void TestKavroBoxNet::whatComesAfterSevenDeadSourcesPlays()
{
    QFETCH(QByteArray, play);
    m_server->serve("/silence.wav", HttpServer::Page{silenceFile(), "audio/wav"});
    m_server->serve(
        "/",
        page("var player = StbMedia.CreatePlayer(), i = 0;"
             "function next() { if (++i > 7) StbMedia.PlayHttp(player, location.origin + '/silence.wav', '');"
             "else { StbMedia."
             + play
             + "; setTimeout(next, 200); } }"
               "function look() { if (StbMedia.GetPlayerState(player) === 2) tell('plays');"
               "else setTimeout(look, 50); }"
               "window.onload = function () { next(); look(); };"));
    begin({m_server->url().toString()});
    QTRY_VERIFY_WITH_TIMEOUT(!m_server->requestsFor("/").isEmpty(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList{"plays"}, soon);
}

QByteArray TestKavroBoxNet::requestFor(const QByteArray &host, const Door &door)
{
    return QByteArray(xhr).replace("%1", host + ':' + QByteArray::number(door.port()));
}

int main(int argc, char **argv)
{
    const QString reason = OwnNetwork::enter();
    QCoreApplication application(argc, argv);
    TestKavroBoxNet test(reason);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_kavroboxnet.moc"
