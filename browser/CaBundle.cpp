// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/CaBundle.h"

#include <QSslCertificate>
#include <QSslSocket>

namespace {

const char path[] = "/etc/ssl/certs/ca-bundle.crt";
const int usualBegin = 1000; // ms

} // namespace

CaBundle::CaBundle(QObject *parent)
    : QThread(parent)
    , timer(startTimer(usualBegin))
{
}

CaBundle::~CaBundle()
{
    wait();
}

void CaBundle::require()
{
    begin();
    wait();
}

void CaBundle::run()
{
    QSslSocket::setDefaultCaCertificates(QSslCertificate::fromPath(QLatin1String(path)));
}

void CaBundle::timerEvent(QTimerEvent *)
{
    begin();
}

void CaBundle::begin()
{
    if (timer == 0)
        return;
    killTimer(timer);
    timer = 0;
    start();
}
