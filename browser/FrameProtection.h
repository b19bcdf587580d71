// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

class QWebFrame;
class QWebPage;

/// Keeps from a page and all its frames, those of other sites too, what crashes the engine whatever the script objects
/// do: workers, and of its editors all but typing. Beside PageGuards, which are about the script objects.
class FrameProtection : public QObject
{
    Q_OBJECT

public:
    /// Protects the page as long as it lives, if its engine needs it.
    static void addTo(QWebPage *page);

private slots:
    void forgetEdits();
    void watch(QWebFrame *frame);
    void runScript();

private:
    explicit FrameProtection(QWebPage *page);
};
