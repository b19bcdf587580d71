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
    /// The page becomes its parent.
    explicit FrameProtection(QWebPage *page);

private slots:
    void forgetEdits();
    void watch(QWebFrame *frame);
    void runScript();
};
