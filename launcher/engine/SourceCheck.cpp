// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "SourceCheck.h"

#include "NameLists.h"

#include <QFile>
#include <QJSEngine>

namespace {

const int idleTime = 5000; // ms

QString textOf(const QString &name)
{
    QFile file(":/engine/" + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The resource %s is missing", qPrintable(file.fileName()));
    return QString::fromUtf8(file.readAll());
}

QJSValue evaluated(QJSEngine *engine, const QString &text, const QString &name)
{
    QJSValue value = engine->evaluate(text, name);
    if (value.isError() && !engine->isInterrupted())
        qFatal("%s: %s", qPrintable(name), qPrintable(value.toString()));
    return value;
}

// In strict scripts this engine takes some calls for the last thing that a function does though they are not.
QString unstrict(QString text)
{
    return text.remove("'use strict';").remove("\"use strict\";");
}

void setUp(QJSEngine *engine)
{
    evaluated(engine, unstrict(textOf("acorn.js")), "acorn.js");
    evaluated(engine, textOf("modules.js"), "modules.js");
    QJSValue add = engine->globalObject().property("modules").property("add");
    for (const char *module : {"css/parse", "css-what/parse", "css-what/types", "postcss-value-parser/parse"})
        add.call({module, unstrict(textOf(QString(module) + ".js"))});
    evaluated(engine, "var lists = " + QString::fromUtf8(NameLists::asJson(":/engine/styles.txt")), "styles.txt");
    for (const char *script : {"scripts.js", "styles.js", "sources.js"})
        evaluated(engine, textOf(script), script);
}

QString sentence(const QString &address, const QJSValue &finding)
{
    const int more = finding.property("more").toInt();
    const QString places = more == 0 ? QString()
        : more == 1                  ? " (and once more)"
                                     : QString(" (and %1 times more)").arg(more);
    return QString("%1:%2: the box's engine %3%4; write %5")
        .arg(address, finding.property("line").toString(), finding.property("does").toString(), places,
             finding.property("instead").toString());
}

} // namespace

SourceCheck::SourceCheck()
{
    Q_INIT_RESOURCE(engine);
    Q_INIT_RESOURCE(parsers);
    m_idle.setSingleShot(true);
    m_idle.setInterval(idleTime);
    connect(&m_idle, &QTimer::timeout, &m_idle, [this] { dropParsers(); });
    m_idle.moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, &m_idle, [this] {
        m_idle.stop();
        dropParsers();
    });
    m_thread.start(QThread::LowPriority);
}

SourceCheck::~SourceCheck()
{
    {
        const QMutexLocker locker(&m_lock);
        m_isEnding = true;
        if (m_engine)
            m_engine->setInterrupted(true);
    }
    m_thread.quit();
    m_thread.wait();
}

// On the thread, as all that follows but look().
void SourceCheck::loadParsers()
{
    {
        const QMutexLocker locker(&m_lock);
        m_engine = std::make_unique<QJSEngine>();
        m_engine->setInterrupted(m_isEnding);
    }
    setUp(m_engine.get());
}

// A page is looked at once; until the next one the memory is better given back.
void SourceCheck::dropParsers()
{
    const QMutexLocker locker(&m_lock);
    m_engine.reset();
}

void SourceCheck::look(const QString &address, const QString &kind, const QByteArray &text)
{
    QString reason;
    if (text.size() > largestText)
        reason = QString("it has more than %1 bytes").arg(largestText);
    else if (m_waiting >= mostWaiting)
        reason = "there are too many others";
    if (!reason.isEmpty()) {
        emit looked(address,
                    {QString("%1: nobody has looked whether the box's engine knows this: %2").arg(address, reason)});
        return;
    }
    ++m_waiting;
    QMetaObject::invokeMethod(&m_idle, [=] { lookHere(address, kind, QString::fromUtf8(text)); });
}

void SourceCheck::lookHere(const QString &address, const QString &kind, const QString &text)
{
    --m_waiting;
    QStringList sentences;
    if (!m_engine)
        loadParsers();
    const QJSEngine *engine = m_engine.get();
    const QJSValue findings = engine->globalObject().property("sources").property("look").call({kind, text});
    if (engine->isInterrupted())
        return;
    if (findings.isError())
        sentences += QString("%1: this could not be looked at for what the box's engine does not know (%2)")
                         .arg(address, findings.toString());
    for (quint32 i = 0; i < findings.property("length").toUInt(); ++i)
        sentences += sentence(address, findings.property(i));
    m_idle.start();
    emit looked(address, sentences);
}
