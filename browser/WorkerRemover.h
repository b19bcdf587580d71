// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

class QWebFrame;
class QWebPage;

/// Keeps workers from a page and its frames: the engine ends the process when a worker is terminated at the wrong
/// moment, by a page or with it, and when 500 of them live. They have no name in a page, as in an engine without them.
class WorkerRemover : public QObject
{
    Q_OBJECT

public:
    /// The page becomes its parent.
    explicit WorkerRemover(QWebPage *page);

private slots:
    void watch(QWebFrame *frame);
    void removeWorkers();
};
