// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/AddressDialog.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QUrl>
#include <QWebView>

namespace {

QPointer<QLineEdit> &lineEdit()
{
    static QPointer<QLineEdit> theOne;
    return theOne;
}

} // namespace

void AddressDialog::ask(QWebView *view, const char *slot)
{
    // F1 can end the whole application while the dialog is open; it then goes with the view, its parent.
    QPointer<QDialog> dialog = new AddressDialog(view, slot);
    dialog->exec();
    delete dialog;
}

QString AddressDialog::address()
{
    return lineEdit() ? lineEdit()->text() : QString();
}

AddressDialog::AddressDialog(QWebView *view, const char *slot)
    : QDialog(view)
{
    setFixedSize(400, 100);
    // It would take the window's black background, before which its text, black too, is not to be seen.
    QPalette colors = palette();
    colors.setBrush(QPalette::Window, QApplication::palette().brush(QPalette::Window));
    setPalette(colors);
    new QLabel(QLatin1String("Enter URL: "), this);
    QLineEdit *edit = new QLineEdit(view->url().toString(), this);
    edit->setFixedWidth(300);
    edit->move(100, 0);
    lineEdit() = edit;
    QPushButton *button = new QPushButton(QLatin1String("Go"), this);
    button->move(0, 50);
    connect(button, SIGNAL(clicked()), view, slot);
    connect(button, SIGNAL(clicked()), SLOT(close()));
}
