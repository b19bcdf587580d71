// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/CaBundle.h"

#include "common/other/plainfile.h"

#include <QSslCertificate>
#include <QSslSocket>

#include <malloc.h>

namespace {

const char path[] = "/etc/ssl/certs/ca-bundle.crt";
const int interval = 1000; // ms

} // namespace

CaBundle::CaBundle(QObject *parent)
    : QThread(parent)
    , timer(startTimer(interval))
    , isBegun(false)
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
    if (!isBegun) {
        begin();
    } else if (isFinished()) {
        killTimer(timer);
        // What reading them needed would stay in the heap, nearly a megabyte.
        malloc_trim(0);
    }
}

void CaBundle::begin()
{
    if (isBegun)
        return;
    isBegun = true;
    start();
}
