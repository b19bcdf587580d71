// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QList>
#include <QObject>
#include <QSslCertificate>

class QWebFrame;
class QWebPage;

/// Makes the certificates of the box those that servers are checked against by default. Reading them takes as long as
/// all else until a first page is shown, so a thread does it once that page is there, and who needs them earlier waits.
/// Certificates that the launcher makes the default ones meanwhile stay.
class CaBundle : public QObject
{
    Q_OBJECT

public:
    explicit CaBundle(QObject *parent);
    /// They are in use then.
    ~CaBundle() override;

    /// Has a new page in the frame wait before it opens a secure WebSocket: the engine asks nobody for that.
    void addTo(QWebFrame *frame);
    /// Does so for all frames inside the page.
    void watchFrames(const QWebPage *page);

public slots:
    void begin();
    /// Returns when they are in use.
    void require();

private slots:
    void watch(QWebFrame *frame);
    void addToSender();

private:
    class Reader;

    Reader *const reader;
    const QList<QSslCertificate> former;
    bool isBegun;
    bool isInUse;
};
