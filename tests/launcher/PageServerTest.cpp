// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PageServerTest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTcpSocket>
#include <QTest>

void PageServerTest::setUp()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
    write("root/index.html", "index");
    write("root/ten.mp4", "0123456789");
    write("root-secret", "secret");
    write("secret", "secret");
    m_server.reset(new PageServer);
    QString error;
    QVERIFY2(m_server->start(m_folder->filePath("root"), 0, &error), qPrintable(error));
}

void PageServerTest::write(const QString &name, const QByteArray &content) const
{
    QDir(m_folder->path()).mkpath(QFileInfo(name).path());
    QFile file(m_folder->filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

PageServerTest::Answer PageServerTest::send(const QByteArray &request) const
{
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", quint16(port()));
    socket.write(request);
    QByteArray received;
    while (socket.waitForReadyRead(patience))
        received += socket.readAll();
    const int end = received.indexOf("\r\n\r\n");
    return {received.mid(9, 3).toInt(), received.left(end + 2), received.mid(end + 4)};
}

PageServerTest::Answer PageServerTest::ask(const QByteArray &path, const QByteArray &method,
                                           const QByteArray &headers) const
{
    return send(method + ' ' + path + " HTTP/1.1\r\nHost: " + host() + "\r\nConnection: close\r\n" + headers + "\r\n");
}
