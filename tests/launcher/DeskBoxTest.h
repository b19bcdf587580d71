// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Program.h"
#include "tests/support/HttpServer.h"

#include <QScopedPointer>
#include <QStringList>

/// A test of the desk box with the plugin, as a user has it, headless and with a new box directory: what a page does is
/// known from its requests, the picture from the screenshot.
class DeskBoxTest : public QObject
{
    Q_OBJECT

protected:
    /// A page whose script has two functions: tell(text) tells the test a text, by a request that it waits for, and
    /// leave(milliseconds) leaves the desk box a while later.
    static QByteArray page(const QByteArray &script, const QByteArray &body = {});

    /// To be called before each test.
    void setUp();
    void begin(const QStringList &arguments);
    int run(const QStringList &arguments);
    /// What pages have told.
    QStringList told() const;

    /// How long a box on a busy machine may take to show what is waited for, in milliseconds.
    static constexpr int patience = 60000;

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_box;
    QString m_picture;
    QScopedPointer<HttpServer> m_server;
    QScopedPointer<Program> m_program;
    QStringList m_usual; // arguments

private slots:
    /// Shows what the desk box has said if the test failed.
    void cleanup();

private:
    static constexpr char program[] = "bin/kavro-box";
};
