// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "BareMedia.h"
#include "Subject.h"

#include <QWidget>

/// A web view as any program would have it, that shows the page in the same way as the plugin does, and evaluates a
/// text for each event.
class BareSubject : public QObject, public Subject
{
    Q_OBJECT

public:
    BareSubject();

    void start(const QUrl &page) override;
    QWebView *view() const override { return m_view; }
    void connectEvents() override { }
    void fire(int argument) override;

signals:
    void fired(int argument);

private:
    void evaluateEvent(int argument);
    void addMedia();

    QWidget m_screen;
    BareMedia m_media;
    QWebView *m_view;
};
