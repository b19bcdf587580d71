// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "launcher/Outlet.h"

#include <QTest>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

const int shortTime = 100;     // ms
const int patience = 60000;    // ms, of a busy machine
const int pipeSize = 64 << 10; // bytes

QByteArray readAll(int end, int size)
{
    QByteArray bytes;
    QByteArray piece(pipeSize, '\0');
    pollfd readable = {end, POLLIN, 0};
    while (bytes.size() < size && poll(&readable, 1, patience) == 1) {
        const ssize_t count = read(end, piece.data(), size_t(piece.size()));
        if (count <= 0)
            break;
        bytes.append(piece.constData(), int(count));
    }
    return bytes;
}

} // namespace

/// An output that may be a pipe which nobody reads.
class TestOutlet : public QObject
{
    Q_OBJECT

private slots:
    void init() { QCOMPARE(pipe2(m_ends, O_CLOEXEC), 0); }
    void cleanup();

    void allIsWrittenInOrder_data();
    void allIsWrittenInOrder();
    void whatIsWrittenOutlivesIt();
    void nobodyWaitsForAPipeThatNobodyReads();
    void aReaderThatGoesIsNoError();

private:
    int m_ends[2];
};

void TestOutlet::cleanup()
{
    close(m_ends[0]);
    close(m_ends[1]);
}

void TestOutlet::allIsWrittenInOrder_data()
{
    QTest::addColumn<int>("flags");
    QTest::newRow("a pipe") << 0;
    QTest::newRow("a pipe that does not wait") << O_NONBLOCK;
}

void TestOutlet::allIsWrittenInOrder()
{
    QFETCH(int, flags);
    QCOMPARE(fcntl(m_ends[1], F_SETFL, flags), 0);
    Outlet outlet(m_ends[1]);
    QVERIFY(!outlet.isTerminal());
    QByteArray all;
    for (int i = 0; i < 50000; ++i) {
        const QByteArray line = QByteArray::number(i) + '\n';
        all += line;
        outlet.write(line);
    }
    QVERIFY(all.size() > 2 * pipeSize);
    QVERIFY(readAll(m_ends[0], all.size()) == all);
    outlet.finish(patience);
    QVERIFY(!outlet.isStuck(0));
}

void TestOutlet::whatIsWrittenOutlivesIt()
{
    const QByteArray all(3 * pipeSize, 'x');
    {
        Outlet outlet(m_ends[1]);
        outlet.write(all);
    }
    QVERIFY(readAll(m_ends[0], all.size()) == all);
}

void TestOutlet::nobodyWaitsForAPipeThatNobodyReads()
{
    Outlet outlet(m_ends[1]);
    QVERIFY(!outlet.isFull());
    while (!outlet.isFull())
        outlet.write(QByteArray(pipeSize, 'x'));
    outlet.write(QByteArray(2 * pipeSize, 'x')); // for what the pipe itself takes
    outlet.finish(shortTime);
    QVERIFY(outlet.isStuck(shortTime));
    QVERIFY(outlet.isFull());
    // It goes on when somebody does.
    readAll(m_ends[0], 8 * pipeSize);
    QTRY_VERIFY(!outlet.isFull());
}

void TestOutlet::aReaderThatGoesIsNoError()
{
    Outlet outlet(m_ends[1]);
    outlet.write(QByteArray(3 * pipeSize, 'x'));
    close(m_ends[0]);
    m_ends[0] = -1;
    outlet.write("more");
    outlet.finish(patience);
    QVERIFY(!outlet.isStuck(0));
}

QTEST_GUILESS_MAIN(TestOutlet)

#include "tst_outlet.moc"
