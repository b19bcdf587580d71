// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/PageScript.h"

#include <QFile>
#include <QHash>
#include <QString>
#include <QWebFrame>

void runPageScript(QWebFrame *frame, const char *name)
{
    static QHash<QString, QString> scripts;
    QString &script = scripts[QLatin1String(name)];
    if (script.isEmpty()) {
        QFile file(QLatin1String(":/kavrostbbrowser/page/") + QLatin1String(name) + QLatin1String(".js"));
        if (file.open(QIODevice::ReadOnly))
            script = QString::fromUtf8(file.readAll().constData());
    }
    // A copy, since a script may run another one.
    frame->evaluateJavaScript(QString(script));
}
