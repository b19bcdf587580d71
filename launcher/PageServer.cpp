// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PageServer.h"

#include "LoopbackPeer.h"
#include "PageConnections.h"
#include "ServedFile.h"

#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <unistd.h>

namespace {

const int firstPort = 20000; // below those that the system gives away itself
const int lastPort = 29999;
const int mostTries = 100;

sockaddr_in loopback(quint16 port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

// Returns a socket, or -1 and the reason in errno.
int listenOn(quint16 port)
{
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (listener < 0)
        return -1;
    const int yes = 1; // although connections of the last time are still remembered
    const sockaddr_in address = loopback(port);
    if (setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) == 0
        && bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0
        && listen(listener, SOMAXCONN) == 0)
        return listener;
    const int number = errno;
    close(listener);
    errno = number;
    return -1;
}

quint16 portOf(int listener)
{
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

MHD_Result answerWith(MHD_Connection *connection, unsigned status, MHD_Response *response)
{
    MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
    // Keeps today's browsers from showing a file, or running it as a script, in another server's page.
    MHD_add_response_header(response, "Cross-Origin-Resource-Policy", "same-origin");
    const MHD_Result result = MHD_queue_response(connection, status, response);
    MHD_destroy_response(response);
    return result;
}

MHD_Result answerEmpty(MHD_Connection *connection, unsigned status, const char *header = nullptr,
                       const QByteArray &value = {})
{
    MHD_Response *response = MHD_create_response_from_buffer(0, nullptr, MHD_RESPMEM_PERSISTENT);
    if (header)
        MHD_add_response_header(response, header, value.constData());
    return answerWith(connection, status, response);
}

MHD_Result answerFile(MHD_Connection *connection, const QString &root, const char *path)
{
    ServedFile file(root, QString::fromUtf8(path));
    if (!file.isOpen())
        return answerEmpty(connection, MHD_HTTP_NOT_FOUND);
    const auto range = ByteRange::fromHeader(
        MHD_lookup_connection_value(connection, MHD_HEADER_KIND, MHD_HTTP_HEADER_RANGE), file.size());
    const QByteArray total = QByteArray::number(file.size());
    if (range.kind == ByteRange::Outside)
        return answerEmpty(connection, MHD_HTTP_RANGE_NOT_SATISFIABLE, MHD_HTTP_HEADER_CONTENT_RANGE,
                           "bytes */" + total);

    const auto length = uint64_t(range.length());
    MHD_Response *response =
        MHD_create_response_from_fd_at_offset64(length, file.takeDescriptor(), uint64_t(range.first));
    MHD_add_response_header(response, MHD_HTTP_HEADER_ACCEPT_RANGES, "bytes");
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, file.contentType());
    if (range.kind == ByteRange::Whole)
        return answerWith(connection, MHD_HTTP_OK, response);
    const QByteArray part = "bytes " + QByteArray::number(range.first) + '-' + QByteArray::number(range.last) + '/';
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_RANGE, (part + total).constData());
    return answerWith(connection, MHD_HTTP_PARTIAL_CONTENT, response);
}

MHD_Result addHost(void *hosts, MHD_ValueKind, const char *name, const char *value)
{
    if (qstricmp(name, MHD_HTTP_HEADER_HOST) == 0)
        static_cast<QByteArrayList *>(hosts)->append(QByteArray(value).trimmed());
    return MHD_YES;
}

// Its messages would be chatter on standard error.
void dropMessage(void *, const char *, va_list) { }

} // namespace

/// What is served, and to whom.
struct PageServer::Site
{
    QString root;
    QByteArray host; // with the port
    PageConnections connections;

    MHD_Result answer(MHD_Connection *connection, const char *target, const char *method);
    MHD_Result refuseOtherHost(MHD_Connection *connection, unsigned status) const;
};

MHD_Result PageServer::Site::answer(MHD_Connection *connection, const char *target, const char *method)
{
    connections.waitForReader(connection);
    QByteArrayList hosts;
    MHD_get_connection_values(connection, MHD_HEADER_KIND, addHost, &hosts);
    if (hosts.size() != 1)
        return refuseOtherHost(connection, MHD_HTTP_BAD_REQUEST);
    // As a proxy is asked, the target has the host too.
    const QByteArray origin = "http://" + host;
    const char *path = qstrncmp(target, origin.constData(), uint(origin.size())) == 0 ? target + origin.size() : target;
    if (hosts.first() != host || *path != '/')
        return refuseOtherHost(connection, MHD_HTTP_MISDIRECTED_REQUEST);

    if (std::strcmp(method, MHD_HTTP_METHOD_GET) == 0 || std::strcmp(method, MHD_HTTP_METHOD_HEAD) == 0)
        return answerFile(connection, root, path);
    return answerEmpty(connection, MHD_HTTP_METHOD_NOT_ALLOWED, MHD_HTTP_HEADER_ALLOW, "GET, HEAD");
}

MHD_Result PageServer::Site::refuseOtherHost(MHD_Connection *connection, unsigned status) const
{
    QByteArray text = "This server answers requests for http://" + host + "/ and no other host.\n";
    MHD_Response *response = MHD_create_response_from_buffer(size_t(text.size()), text.data(), MHD_RESPMEM_MUST_COPY);
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, "text/plain");
    return answerWith(connection, status, response);
}

PageServer::PageServer() = default;

PageServer::~PageServer()
{
    if (!m_daemon) {
        if (m_listener >= 0)
            close(m_listener);
        return;
    }
    m_stopping = true;
    shutdown(m_listener, SHUT_RDWR); // wakes the thread
    m_thread.join();
    MHD_stop_daemon(m_daemon);
}

bool PageServer::start(const QString &folder, quint16 port, QString *error)
{
    m_listener = port ? listenOn(port) : -1;
    for (int tries = 0; m_listener < 0 && tries < mostTries; ++tries)
        m_listener = listenOn(quint16(QRandomGenerator::system()->bounded(firstPort, lastPort + 1)));
    if (m_listener < 0) {
        *error = QString("no port of 127.0.0.1 can be had for the pages (%1); close some programs that listen on one")
                     .arg(qt_error_string(errno));
        return false;
    }
    m_port = portOf(m_listener);
    const sockaddr_in address = loopback(m_port);
    if (LoopbackPeer::user(address, sockaddr_in()) != geteuid()) {
        *error = "this kernel does not tell whose a connection is, so pages cannot be kept from other users; as root: "
                 "modprobe tcp_diag";
        return false;
    }
    m_site.reset(new Site{QFileInfo(folder).canonicalFilePath(), "127.0.0.1:" + QByteArray::number(m_port),
                          PageConnections(address)});

    const MHD_AcceptPolicyCallback admit = [](void *site, const sockaddr *client, socklen_t) {
        const bool isAdmitted =
            static_cast<Site *>(site)->connections.admits(*reinterpret_cast<const sockaddr_in *>(client));
        return isAdmitted ? MHD_YES : MHD_NO;
    };
    const MHD_NotifyConnectionCallback changed = [](void *site, MHD_Connection *connection, void **,
                                                    MHD_ConnectionNotificationCode code) {
        auto &connections = static_cast<Site *>(site)->connections;
        if (code == MHD_CONNECTION_NOTIFY_STARTED)
            connections.open(connection,
                             MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd);
        else
            connections.close(connection);
    };
    const MHD_AccessHandlerCallback answer = [](void *site, MHD_Connection *connection, const char *target,
                                                const char *method, const char *, const char *, size_t *uploaded,
                                                void **request) {
        // A connection can be used again if its request is read to the end before it is answered.
        const bool isBegun = std::exchange(*request, site) == nullptr;
        const bool hasMore = std::exchange(*uploaded, 0) > 0;
        return isBegun || hasMore ? MHD_YES : static_cast<Site *>(site)->answer(connection, target, method);
    };
    const MHD_RequestCompletedCallback answered = [](void *site, MHD_Connection *connection, void **,
                                                     MHD_RequestTerminationCode) {
        static_cast<Site *>(site)->connections.waitForRequest(connection);
    };
    m_daemon = MHD_start_daemon(MHD_USE_EPOLL | MHD_USE_ERROR_LOG, m_port, admit, m_site.get(), answer, m_site.get(),
                                MHD_OPTION_EXTERNAL_LOGGER, dropMessage, nullptr, MHD_OPTION_LISTEN_SOCKET, m_listener,
                                MHD_OPTION_NOTIFY_CONNECTION, changed, m_site.get(), MHD_OPTION_NOTIFY_COMPLETED,
                                answered, m_site.get(), MHD_OPTION_SIGPIPE_HANDLED_BY_APP, 1, MHD_OPTION_END);
    if (!m_daemon) {
        *error = "the server for the pages cannot be started; close some programs, for there is too little memory";
        return false;
    }
    m_thread = std::thread(&PageServer::run, this);
    return true;
}

void PageServer::run()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    while (!m_stopping && MHD_run_wait(m_daemon, m_site->connections.endIdle()) == MHD_YES) { }
}

QUrl PageServer::address(const QString &fileName) const
{
    QUrl url("http://127.0.0.1/");
    url.setPort(m_port);
    url.setPath('/' + fileName, QUrl::DecodedMode);
    return url;
}
