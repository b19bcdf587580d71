// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"
#include "InsideProcess.h"

#include <QTest>

#include <csignal>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
const bool isInstrumented = true;
#else
const bool isInstrumented = false;
#endif

const int manyRequests = 1200;

// A server at all addresses of this PC that takes connections, and no more: the kernel does it alone, so that this
// process needs no descriptors for them.
class SilentServer
{
public:
    SilentServer()
        : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        m_address.sin_family = AF_INET;
        m_address.sin_addr.s_addr = htonl(INADDR_ANY);
        auto *address = reinterpret_cast<sockaddr *>(&m_address);
        socklen_t size = sizeof m_address;
        m_isListening = bind(m_socket, address, size) == 0 && ::listen(m_socket, 2 * manyRequests) == 0
            && getsockname(m_socket, address, &size) == 0;
    }
    ~SilentServer() { close(m_socket); }
    SilentServer(const SilentServer &) = delete;
    SilentServer &operator=(const SilentServer &) = delete;

    bool isListening() const { return m_isListening; }
    int port() const { return ntohs(m_address.sin_port); }

private:
    const int m_socket;
    sockaddr_in m_address = {};
    bool m_isListening = false;
};

} // namespace

/// What a page may use of the PC.
class TestLimits : public DeskBoxTest
{
    Q_OBJECT

private slots:
    void init() { setUp(); }

    void aPageMayHaveManyRequestsWaiting();
    void aBoxHasFourGigabytes();
    void aPageThatTakesTooMuchMemoryIsTold();
    void aPageThatMakesDoWithItsMemoryIsToldToo();
    void theMemoryIsToldWithoutStackToo();

private:
    /// Starts the desk box with the limits that a shell's command sets.
    void beginBelow(const QString &limit, const QStringList &arguments);
};

void TestLimits::beginBelow(const QString &limit, const QStringList &arguments)
{
    const QString program = m_program->program();
    m_program->setProgram("sh");
    m_usual = QStringList{"-euc", limit + "; exec \"$@\"", "sh", program} + m_usual;
    begin(arguments);
}

void TestLimits::aPageMayHaveManyRequestsWaiting()
{
    const SilentServer server;
    QVERIFY(server.isListening());
    m_server->serve("/",
                    page(QString("var waiting = []; onload = function () { for (var i = 0; i < %1; ++i) {"
                                 "var request = new XMLHttpRequest();"
                                 "request.open('GET', 'http://127.1.' + (i >> 8) + '.' + (i & 255) + ':%2/');"
                                 "request.onerror = function () { tell('refused'); };"
                                 "request.send(); waiting.push(request); }"
                                 "setTimeout(function () { tell('alive'); leave(0); }, 3000); };")
                             .arg(manyRequests)
                             .arg(server.port())
                             .toUtf8()));
    beginBelow("ulimit -Sn 1024", {m_server->url().toString()});
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(told(), QStringList("alive"));
    QVERIFY2(!m_program->errors().contains("Too many open files"), m_program->errors().constData());
}

void TestLimits::aBoxHasFourGigabytes()
{
    if (isInstrumented)
        QSKIP("A box under the sanitizers has no limit of memory.");
    m_server->serve("/", page("onload = function () { tell('loaded'); };"));
    begin({m_server->url().toString()});
    QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList("loaded"), patience);
    const pid_t process = insideProcess(m_server->url().toString().toUtf8());
    const QByteArray limits = contentOf(QString("/proc/%1/limits").arg(process)).simplified();
    QVERIFY2(limits.contains(" Max data size 4294967296 "), limits.constData());
}

void TestLimits::aPageThatTakesTooMuchMemoryIsTold()
{
    if (isInstrumented)
        QSKIP("A box under the sanitizers has no limit of memory.");
    m_server->serve(
        "/",
        page("onload = function () { var all = []; for (;;) { var some = []; for (var i = 0; i < 10000; ++i)"
             "some.push({ number: i, text: 'a' + i }); all.push(some); } };"));
    // 600 MB in place of the 4 GB.
    beginBelow("ulimit -d 614400", {m_server->url().toString()});
    const int status = m_program->finish();
    QVERIFY2(status > 128, qPrintable(QString::number(status)));
    QVERIFY(m_program->errors().contains("\nkavro-box: the page took more than the 600 MB of memory that a box has, "
                                         "and the box crashed (signal "));
}

void TestLimits::aPageThatMakesDoWithItsMemoryIsToldToo()
{
    if (isInstrumented)
        QSKIP("A box under the sanitizers has no limit of memory.");
    m_server->serve("/",
                    page("onload = function () { window.all = []; try { for (;;) all.push(new Uint8Array(10000000)); }"
                         "catch (error) { tell('enough'); } leave(1000); };"));
    m_usual = QStringList{"--headless", "--box", m_box};                            // a picture takes more than is left
    beginBelow("ulimit -d 614400", {"--engine", "pc", m_server->url().toString()}); // a box's knows no such arrays
    QCOMPARE(m_program->finish(), 0);
    QCOMPARE(told(), QStringList("enough"));
    QCOMPARE(m_program->errors().count("\nkavro-box: the page has taken nearly all of the 600 MB of memory that a box "
                                       "has; what needs more fails\n"),
             1);
}

void TestLimits::theMemoryIsToldWithoutStackToo()
{
    if (isInstrumented)
        QSKIP("A box under the sanitizers has no limit of memory.");
    m_server->serve("/",
                    page("onload = function () { window.all = []; for (var i = 0; i < 43; ++i)"
                         "all.push(new Uint8Array(10000000)); setTimeout(function () {"
                         "for (var element = document.body, i = 0; i < 60000; ++i)"
                         "element = element.appendChild(document.createElement('div'));"
                         "document.body.offsetHeight; tell('survived'); leave(); }, 100); };"));
    beginBelow("ulimit -d 614400; ulimit -s 8192", {"--engine", "pc", m_server->url().toString()});
    QCOMPARE(m_program->finish(), 128 + SIGSEGV);
    QCOMPARE(told(), QStringList());
    QVERIFY(m_program->errors().contains("\nkavro-box: the page took more than the 600 MB of memory that a box has, "
                                         "and the box crashed (signal "));
}

QTEST_GUILESS_MAIN(TestLimits)

#include "tst_limits.moc"
