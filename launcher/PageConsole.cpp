// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PageConsole.h"

#include "Report.h"

namespace {

const int longestMessage = 2000; // characters

} // namespace

PageConsole::PageConsole(const QObject *view)
{
    const QObjectList &children = view->children();
    for (const QObject *child : children) {
        if (child->inherits("QWebPage"))
            connect(child, SIGNAL(consoleMessageReceived(MessageSource, MessageLevel, QString, int, QString)),
                    SLOT(show(MessageSource, MessageLevel, QString, int, QString)));
    }
}

void PageConsole::show(MessageSource, MessageLevel level, const QString &message, int line, const QString &file)
{
    const QString kind = level == ErrorLevel ? "console error" : level == WarningLevel ? "console warning" : "console";
    QString text = message.size() > longestMessage ? message.left(longestMessage) + "..." : message;
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control)
            character = ' ';
    }
    report(QString("%1: %2 (%3:%4)").arg(kind, text, file, QString::number(line)));
}
