// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QString>

class QWebFrame;

/// Makes the documents of a page find the engine of a box: takes from each document and frame, before its first script,
/// the names that the box's engine lacks.
class BoxEngine : public QObject
{
    Q_OBJECT

public:
    /// For a QWebPage, before its first document. Scripts of the plugin, if it is the page's parent, come after this.
    explicit BoxEngine(const QObject *page);

private slots:
    void watch(QWebFrame *frame);
    void removeNames();

private:
    QString m_script;
};
