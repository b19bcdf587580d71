// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PageServer.h"

#include "ServedFile.h"

#include <QFileInfo>

#include <cstdio>
#include <cstring>

#include <arpa/inet.h>
#include <microhttpd.h>
#include <netinet/in.h>

namespace {

MHD_Result answerWith(MHD_Connection *connection, unsigned status, MHD_Response *response)
{
    MHD_add_response_header(response, MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
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

MHD_Result answer(void *root, MHD_Connection *connection, const char *path, const char *method, const char *,
                  const char *, size_t *uploaded, void **)
{
    if (std::strcmp(method, MHD_HTTP_METHOD_GET) == 0 || std::strcmp(method, MHD_HTTP_METHOD_HEAD) == 0)
        return answerFile(connection, *static_cast<const QString *>(root), path);
    if (*uploaded > 0) {
        *uploaded = 0; // read to its end before it is refused
        return MHD_YES;
    }
    return answerEmpty(connection, MHD_HTTP_METHOD_NOT_ALLOWED, MHD_HTTP_HEADER_ALLOW, "GET, HEAD");
}

// Its messages would be chatter on standard error.
void dropMessage(void *, const char *, va_list) { }

} // namespace

PageServer::~PageServer()
{
    if (m_daemon)
        MHD_stop_daemon(m_daemon);
}

bool PageServer::start(const QString &folder, quint16 port)
{
    m_root = QFileInfo(folder).canonicalFilePath();
    for (const quint16 tried : {port, quint16(0)}) {
        sockaddr_in loopback = {};
        loopback.sin_family = AF_INET;
        loopback.sin_port = htons(tried);
        loopback.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_daemon = MHD_start_daemon(MHD_USE_AUTO | MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_ERROR_LOG, tried, nullptr,
                                    nullptr, answer, &m_root, MHD_OPTION_EXTERNAL_LOGGER, dropMessage, nullptr,
                                    MHD_OPTION_SOCK_ADDR, &loopback, MHD_OPTION_END);
        if (m_daemon)
            return true;
    }
    return false;
}

QUrl PageServer::address(const QString &fileName) const
{
    QUrl url("http://127.0.0.1/");
    url.setPort(MHD_get_daemon_info(m_daemon, MHD_DAEMON_INFO_BIND_PORT)->port);
    url.setPath('/' + fileName, QUrl::DecodedMode);
    return url;
}
