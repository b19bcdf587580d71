// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "tests/platform/RecordingPlatform.h"
#include "tests/support/HostedPlugin.h"

#include <QImage>
#include <QRect>
#include <QStringList>
#include <memory>

/// The demonstration portal in the plugin, on the recording platform, with a remote control in front of it. It finds
/// the web engine of a box. Ids of rows are told without "row-".
class PortalPage
{
public:
    static QUrl url();

    /// Shows the portal in a plugin of its own. False if that fails. Its calls to the platform are not forgotten.
    bool open(const QSize &size = {1280, 720});
    /// Has the page forget what it remembers from one start to the next.
    void forget();
    /// Ends the plugin.
    void close();

    /// Presses keys given by their names in Qt::Key, separated by blanks, with a count where there are several:
    /// "Down*3".
    void press(const QString &keys);
    QVariant evaluate(const QString &script);
    /// What an element shows, blanks simplified; of several the first.
    QString text(const QString &selector);
    QStringList texts(const QString &selector);
    QString screen();
    /// The id of what has the focus, or a complaint if that is not one element.
    QString focused();
    QStringList rows();
    bool isShown(const QString &selector);
    /// Where an element is on the screen; empty if it is not shown.
    QRect place(const QString &selector);
    /// What the page paints, on nothing.
    QImage painted();
    /// The uncaught errors of its scripts since it was opened.
    QStringList errors();

    HostedPlugin &plugin() { return *m_plugin; }

    /// Says what the platform answers for a player that plays from now on: position and duration are milliseconds.
    static void playerIs(int state, long long position = 0, long long duration = 0);
    /// The calls that begin with a text, since the last time; forgets all others as well.
    static QByteArrayList takeCalls(const QByteArray &beginning);
    /// The last of them, or nothing.
    static QByteArray takeLastCall(const QByteArray &beginning);

private:
    std::unique_ptr<HostedPlugin> m_plugin;
};
