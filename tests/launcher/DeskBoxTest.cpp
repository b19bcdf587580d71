// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DeskBoxTest.h"

#include <QTest>

QByteArray DeskBoxTest::page(const QByteArray &script, const QByteArray &body)
{
    return "<html><head><script>function tell(what) { var request = new XMLHttpRequest();"
           "request.open('GET', '/told/' + encodeURIComponent(what), false); request.send(); }\n"
           "function leave(delay) { setTimeout(function () { StbDisplay.ExitToMenu(); }, delay || 0); }\n"
        + script + "</script></head><body>" + body + "</body></html>";
}

void DeskBoxTest::setUp()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
    m_box = m_folder->filePath("box");
    m_picture = m_folder->filePath("picture.png");
    m_server.reset(new HttpServer);
    m_program.reset(new Program(program));
    m_usual = QStringList{"--headless", "--box", m_box, "--screenshot", m_picture};
}

void DeskBoxTest::cleanup()
{
    if (QTest::currentTestFailed() && m_program)
        qInfo("The desk box said:\n%s%s", m_program->output().constData(), m_program->errors().constData());
}

void DeskBoxTest::begin(const QStringList &arguments)
{
    m_program->setArguments(m_usual + arguments);
    m_program->start();
}

int DeskBoxTest::run(const QStringList &arguments)
{
    return m_program->run(m_usual + arguments);
}

QStringList DeskBoxTest::told() const
{
    QStringList texts;
    for (const HttpServer::Request &request : m_server->requests()) {
        if (request.path.startsWith("/told/"))
            texts << QUrl::fromPercentEncoding(request.path.mid(6));
    }
    return texts;
}
