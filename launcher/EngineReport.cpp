// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "EngineReport.h"

#include "PageConsole.h"
#include "Report.h"
#include "engine/LoadedTexts.h"

#include <QNetworkAccessManager>

namespace {

const int mostSaid = 10000; // sentences, of a page that never loads the same twice

} // namespace

EngineReport::EngineReport(const QObject *view, PageConsole *console)
    : m_console(console)
{
    connect(&m_check, &SourceCheck::looked, this, &EngineReport::say);
    const QList<QNetworkAccessManager *> managers = view->findChildren<QNetworkAccessManager *>();
    for (QNetworkAccessManager *manager : managers) {
        const auto *texts = new LoadedTexts(manager);
        connect(texts, &LoadedTexts::loaded, &m_check, &SourceCheck::look);
    }
}

void EngineReport::say(const QString &address, const QStringList &sentences)
{
    for (const QString &sentence : sentences) {
        if (!m_said.contains(sentence))
            report(sentence);
        m_console->warn(sentence);
    }
    // What is no longer so may come again.
    QSet<QString> said;
    for (const QString &sentence : std::as_const(m_said)) {
        if (!sentence.startsWith(address + ':'))
            said += sentence;
    }
    m_said = said.size() > mostSaid ? QSet<QString>() : said;
    m_said += QSet<QString>(sentences.begin(), sentences.end());
}
