// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "platform/desktop/RtpPacket.h"

#include <QTest>

namespace {

// A header without sources, extension and padding has 80 for its first byte: 20 stands for padding, 10 for an
// extension, and the last digit for the number of sources.
constexpr char restOfHeader[] = "21 0001 00000002 00000003";

QByteArray packet(const char *firstByte, const char *rest)
{
    return QByteArray::fromHex(QByteArray(firstByte) + restOfHeader + rest);
}

} // namespace

/// What is taken of a packet of RTP.
class TestRtpPacket : public QObject
{
    Q_OBJECT

private slots:
    void thePayloadIsTaken_data();
    void thePayloadIsTaken();
    void whatLiesBehindThePacketIsNotRead();
};

void TestRtpPacket::thePayloadIsTaken_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<QByteArray>("payload"); // in hexadecimal digits

    QTest::newRow("header alone before it") << packet("80", "4711") << QByteArray("4711");
    QTest::newRow("one source") << packet("81", "01020304 4711") << QByteArray("4711");
    QTest::newRow("most sources") << packet("8f", QByteArray(15 * 8, '5') + "4711") << QByteArray("4711");
    QTest::newRow("empty extension") << packet("90", "beef0000 4711") << QByteArray("4711");
    QTest::newRow("extension of a word") << packet("90", "beef0001 01020304 4711") << QByteArray("4711");
    QTest::newRow("long extension") << packet("90", "beef0101" + QByteArray(257 * 8, '5') + "4711")
                                    << QByteArray("4711");
    QTest::newRow("padding of its length alone") << packet("a0", "4711 01") << QByteArray("4711");
    QTest::newRow("padding") << packet("a0", "4711 00000004") << QByteArray("4711");
    QTest::newRow("padding that has no length") << packet("a0", "4711 00") << QByteArray("471100");
    QTest::newRow("sources, extension and padding")
        << packet("b2", "01020304 05060708 beef0002 0102030405060708 4711 000003") << QByteArray("4711");

    QTest::newRow("nothing at all") << QByteArray() << QByteArray();
    QTest::newRow("shorter than a header") << packet("80", "").chopped(1) << QByteArray();
    QTest::newRow("without payload") << packet("80", "") << QByteArray();
    QTest::newRow("of another version") << packet("40", "4711") << QByteArray();
    QTest::newRow("shorter than its sources") << packet("83", "01020304 05060708 090a0b") << QByteArray();
    QTest::newRow("nothing behind its sources") << packet("81", "01020304") << QByteArray();
    QTest::newRow("shorter than an extension's header") << packet("90", "beef00") << QByteArray();
    QTest::newRow("extension beyond its end") << packet("90", "beef0002 01020304") << QByteArray();
    QTest::newRow("longest extension") << packet("90", "beefffff 01020304 4711") << QByteArray();
    QTest::newRow("nothing behind its extension") << packet("90", "beef0001 01020304") << QByteArray();
    QTest::newRow("nothing before its padding") << packet("a0", "0002") << QByteArray();
    QTest::newRow("padding that reaches into the header") << packet("a0", "4711 04") << QByteArray();
    QTest::newRow("padding that reaches into the extension") << packet("b0", "beef0001 01020304 11 03") << QByteArray();
    QTest::newRow("padding before its beginning") << packet("a0", "4711 ff") << QByteArray();
}

void TestRtpPacket::thePayloadIsTaken()
{
    QFETCH(QByteArray, packet);
    // As large as the packet is, so that an address sanitizer sees what is read beyond.
    const std::vector<unsigned char> buffer(packet.begin(), packet.end());
    const Desk::RtpPayload payload = Desk::payloadOf(buffer, buffer.size());
    QVERIFY(payload.begin <= payload.end && payload.end <= buffer.size());
    QTEST(packet.mid(int(payload.begin), int(payload.end - payload.begin)).toHex(), "payload");
}

void TestRtpPacket::whatLiesBehindThePacketIsNotRead()
{
    const QByteArray first = packet("a0", "4711 000003");
    std::vector<unsigned char> buffer(first.begin(), first.end());
    buffer.insert(buffer.end(), 1000, 0xff); // of a longer packet that came before
    const Desk::RtpPayload payload = Desk::payloadOf(buffer, std::size_t(first.size()));
    QCOMPARE(payload.begin, std::size_t(12));
    QCOMPARE(payload.end, std::size_t(14));
}

QTEST_GUILESS_MAIN(TestRtpPacket)

#include "tst_rtppacket.moc"
