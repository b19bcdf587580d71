// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/desktop/FramePool.h"

#include <QSize>
#include <QTest>

using Desk::FramePool;

/// Frames that are used again.
class TestFramePool : public QObject
{
    Q_OBJECT

private slots:
    void aFrameIsUsedAgainWhenNobodyShowsIt();
    void aFrameHasTheSizeThatIsAskedFor_data();
    void aFrameHasTheSizeThatIsAskedFor();
    void aFrameOutlivesThePool();
};

void TestFramePool::aFrameIsUsedAgainWhenNobodyShowsIt()
{
    FramePool pool;
    auto frame = pool.take(16, 9);
    const void *first = frame.get();
    const auto other = pool.take(16, 9);
    QVERIFY(other.get() != first);
    frame.reset();
    QVERIFY(pool.take(16, 9).get() == first);
}

void TestFramePool::aFrameHasTheSizeThatIsAskedFor_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("the same") << QSize(16, 9);
    QTest::newRow("wider") << QSize(32, 9);
    QTest::newRow("higher") << QSize(16, 18);
    QTest::newRow("lower") << QSize(16, 4);
}

void TestFramePool::aFrameHasTheSizeThatIsAskedFor()
{
    QFETCH(QSize, size);
    FramePool pool;
    pool.take(16, 9); // and given back
    const auto frame = pool.take(size.width(), size.height());
    QCOMPARE(QSize(frame->width, frame->height), size);
    QVERIFY(frame->stride >= 4 * size.width());
    QCOMPARE(frame->pixels.size(), std::size_t(frame->stride) * std::size_t(size.height()));
}

void TestFramePool::aFrameOutlivesThePool()
{
    auto pool = std::make_unique<FramePool>();
    const auto frame = pool->take(16, 9);
    pool.reset();
    frame->pixels.back() = 1;
    QCOMPARE(frame->width, 16);
}

QTEST_GUILESS_MAIN(TestFramePool)

#include "tst_framepool.moc"
