// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QString>

class QWebFrame;

/// Makes the pages of a web view find the engine of a box: takes from each page and frame, before its first script, the
/// names that the box's engine lacks.
class BoxEngine : public QObject
{
    Q_OBJECT

public:
    /// For the plugin's view, before its first page. The engine meets the plugin's own scripts in this state too.
    explicit BoxEngine(QObject *view);

private slots:
    void watch(QWebFrame *frame);
    void removeNames();

private:
    QString m_script;
};
