// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/CaBundle.h"

#include "common/other/plainfile.h"

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
    Common::PlainFile bundle((QLatin1String(path)));
    bundle.open(QIODevice::ReadOnly); // an unopened file has no certificates
    QSslSocket::setDefaultCaCertificates(QSslCertificate::fromDevice(&bundle));
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
