// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QThread>

/// Makes the certificates of the box those that servers are checked against by default. Reading them takes as long as
/// all else until a first page is shown, so this has a thread of its own and, unless somebody needs them at once,
/// begins when that page is there.
class CaBundle : public QThread
{
public:
    explicit CaBundle(QObject *parent);
    ~CaBundle() override;

    /// Returns when the certificates are in use.
    void require();

protected:
    void run() override;
    void timerEvent(QTimerEvent *event) override;

private:
    void begin();

    const int timer; ///< until the thread has ended
    bool isBegun;
};
