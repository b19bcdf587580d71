// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DialogPlacer.h"

#include <QEvent>
#include <QGraphicsProxyWidget>
#include <QTimer>

bool DialogPlacer::eventFilter(QObject *object, QEvent *event)
{
    const bool isShown = event->type() == QEvent::Show;
    auto *dialog = isShown || event->type() == QEvent::Hide ? qobject_cast<QDialog *>(object) : nullptr;
    if (!dialog || !dialog->graphicsProxyWidget() || !dialog->parentWidget())
        return false;
    if (isShown) {
        focusFirstChild(dialog);
        // When it is shown, and Qt has placed it as if the screen were a desktop.
        m_dialog = dialog;
        QTimer::singleShot(0, this, SLOT(place()));
    } else {
        // When it is gone, and the scene has given its keys to nobody.
        m_parent = dialog->parentWidget();
        QTimer::singleShot(0, this, SLOT(returnKeys()));
    }
    return false;
}

void DialogPlacer::place()
{
    if (!m_dialog || !m_dialog->graphicsProxyWidget())
        return;
    const QWidget *parent = m_dialog->parentWidget();
    const QPoint center = parent->mapTo(parent->window(), parent->rect().center());
    m_dialog->graphicsProxyWidget()->setPos(center - m_dialog->rect().center());
}

void DialogPlacer::returnKeys()
{
    if (!m_parent || !m_parent->window()->graphicsProxyWidget())
        return;
    m_parent->window()->graphicsProxyWidget()->setFocus();
    m_parent->setFocus();
}

void DialogPlacer::focusFirstChild(QDialog *dialog)
{
    QWidget *widget = dialog->focusWidget() ? dialog : dialog->nextInFocusChain();
    while (widget != dialog && !(widget->focusPolicy() & Qt::TabFocus))
        widget = widget->nextInFocusChain();
    if (widget != dialog)
        widget->setFocus(Qt::TabFocusReason);
}
