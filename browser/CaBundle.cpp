// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/CaBundle.h"

#include "browser/PageScript.h"
#include "common/other/plainfile.h"
#include "common/other/qtcompat.h"

#include <QSslSocket>
#include <QThread>
#include <QTimer>
#include <QWebFrame>
#include <QWebPage>

#include <malloc.h>

namespace {

const char path[] = "/etc/ssl/certs/ca-bundle.crt";
const int longestDelay = 1000; // ms, for a first page that does not come

// The TLS library ends with the process, whoever works with it then.
class EndOfProcess
{
public:
    ~EndOfProcess()
    {
        if (reader)
            reader->wait();
    }

    QThread *reader = nullptr;
};

// Ends before that library does, which has been set up by its first use.
EndOfProcess &endOfProcess()
{
    static EndOfProcess theOne;
    return theOne;
}

} // namespace

class CaBundle::Reader : public QThread
{
public:
    explicit Reader(QObject *parent)
        : QThread(parent)
    {
    }
    ~Reader() override
    {
        wait();
        if (endOfProcess().reader == this)
            endOfProcess().reader = nullptr;
    }

    QList<QSslCertificate> certificates;

protected:
    void run() override
    {
        Common::PlainFile bundle((QLatin1String(path)));
        bundle.open(QIODevice::ReadOnly); // an unopened file has no certificates
        certificates = QSslCertificate::fromDevice(&bundle);
    }
};

CaBundle::CaBundle(QObject *parent)
    : QObject(parent)
    , reader(new Reader(this))
    , former(QSslSocket::defaultCaCertificates())
    , isBegun(false)
    , isInUse(false)
{
    if (!QtCompat::readsCertificatesSlowly) {
        require();
        return;
    }
    connect(reader, SIGNAL(finished()), SLOT(require()));
    QTimer::singleShot(longestDelay, this, SLOT(begin()));
}

CaBundle::~CaBundle()
{
    require();
}

void CaBundle::begin()
{
    if (isBegun)
        return;
    isBegun = true;
    endOfProcess().reader = reader;
    reader->start();
}

void CaBundle::require()
{
    if (isInUse)
        return;
    isInUse = true;
    begin();
    reader->wait();
    // A list that nobody has replaced is still the same one.
    const QList<QSslCertificate> current = QSslSocket::defaultCaCertificates();
    if (current.constBegin() == former.constBegin())
        QSslSocket::setDefaultCaCertificates(reader->certificates);
    // What reading them needed would stay in the heap, nearly a megabyte.
    malloc_trim(0);
}

void CaBundle::addTo(QWebFrame *frame)
{
    if (isInUse)
        return;
    frame->addToJavaScriptWindowObject(QLatin1String("certificates"), this);
    runPageScript(frame, "sockets");
}

void CaBundle::watchFrames(const QWebPage *page)
{
    if (!isInUse)
        connect(page, SIGNAL(frameCreated(QWebFrame *)), SLOT(watch(QWebFrame *)));
}

void CaBundle::watch(QWebFrame *frame)
{
    connect(frame, SIGNAL(javaScriptWindowObjectCleared()), SLOT(addToSender()));
}

void CaBundle::addToSender()
{
    addTo(static_cast<QWebFrame *>(sender()));
}
