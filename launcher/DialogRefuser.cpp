// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DialogRefuser.h"

#include "Report.h"

#include <QApplication>
#include <QColorDialog>
#include <QEvent>
#include <QFileDialog>
#include <QGraphicsProxyWidget>
#include <QTimer>

DialogRefuser::DialogRefuser()
{
    // The desktop's own would be no widgets, and above all others.
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    qApp->installEventFilter(this);
}

bool DialogRefuser::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() != QEvent::Show || !(qobject_cast<QFileDialog *>(object) || qobject_cast<QColorDialog *>(object)))
        return false;
    auto *dialog = static_cast<QDialog *>(object);
    if (dialog->graphicsProxyWidget())
        dialog->graphicsProxyWidget()->setOpacity(0);
    // When it has an event loop to leave.
    QTimer::singleShot(0, dialog, SLOT(reject()));
    report("the page asks for a file or a colour to be chosen, which cannot be done on a box, and gets none");
    return false;
}
