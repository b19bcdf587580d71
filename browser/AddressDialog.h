// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDialog>

class QLineEdit;
class QWebView;

/// The technician's dialog for going to another address by hand.
class AddressDialog : public QDialog
{
public:
    /// Asks for an address, beginning with the view's own, and calls the view's slot when "Go" is pressed. Returns when
    /// the dialog is closed, or gone together with the view.
    static void ask(QWebView *view, const char *slot);

    /// What stands in the dialog; empty when there is none.
    static QString address();

private:
    AddressDialog(QWebView *view, const char *slot);
};
