// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ServedFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Texts carry no charset, so that a page's own declaration counts.
const char *contentTypeOf(const QString &fileName)
{
    static const QHash<QString, const char *> types = {
        {"css", "text/css"},          {"gif", "image/gif"},
        {"htm", "text/html"},         {"html", "text/html"},
        {"ico", "image/x-icon"},      {"jpeg", "image/jpeg"},
        {"jpg", "image/jpeg"},        {"js", "application/javascript"},
        {"json", "application/json"}, {"m3u8", "application/vnd.apple.mpegurl"},
        {"mkv", "video/x-matroska"},  {"mp3", "audio/mpeg"},
        {"mp4", "video/mp4"},         {"otf", "font/otf"},
        {"png", "image/png"},         {"svg", "image/svg+xml"},
        {"ts", "video/mp2t"},         {"ttf", "font/ttf"},
        {"txt", "text/plain"},        {"vtt", "text/vtt"},
        {"webm", "video/webm"},       {"woff", "font/woff"},
        {"woff2", "font/woff2"},      {"xhtml", "application/xhtml+xml"},
        {"xml", "text/xml"},
    };
    return types.value(QFileInfo(fileName).suffix().toLower(), "application/octet-stream");
}

// Neither outside the root nor hidden below it.
bool isShown(const QString &root, const QString &path)
{
    const QString inside = root.endsWith('/') ? root : root + '/';
    return path.startsWith(inside) && path.indexOf("/.", inside.size() - 1) < 0;
}

} // namespace

ServedFile::ServedFile(const QString &root, const QString &path)
{
    QString name = QDir::cleanPath(root + '/' + path);
    if (QFileInfo(name).isDir())
        name += "/index.html";
    if (!isShown(root, name))
        return;
    // First the file is found, which is harmless, whatever it is. Where it really is, the kernel tells, and then it is
    // that very file that is opened: a link that changes meanwhile leads to no other one.
    const int found = open(QFile::encodeName(name).constData(), O_PATH | O_CLOEXEC);
    if (found < 0)
        return;
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(found);
    struct stat status;
    if (fstat(found, &status) == 0 && S_ISREG(status.st_mode) && isShown(root, QFile::symLinkTarget(link)))
        m_descriptor = open(link.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    close(found);
    if (m_descriptor < 0)
        return;
    m_size = status.st_size;
    m_contentType = contentTypeOf(name);
}

ServedFile::~ServedFile()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

int ServedFile::takeDescriptor()
{
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    return descriptor;
}

ByteRange ByteRange::fromHeader(const char *header, qint64 size)
{
    static const QRegularExpression form("^\\s*bytes\\s*=\\s*(\\d{0,18})-(\\d{0,18})\\s*$");
    const QRegularExpressionMatch match = form.match(QString::fromLatin1(header));
    const ByteRange whole = {Whole, 0, size - 1};
    if (!match.hasMatch())
        return whole;
    const QString from = match.captured(1);
    const QString to = match.captured(2);
    if (from.isEmpty() && to.isEmpty())
        return whole;
    if (from.isEmpty()) // the last bytes
        return {size > 0 && to.toLongLong() > 0 ? Part : Outside, qMax(size - to.toLongLong(), 0LL), size - 1};
    const qint64 first = from.toLongLong();
    if (!to.isEmpty() && to.toLongLong() < first)
        return whole;
    return {first < size ? Part : Outside, first, to.isEmpty() ? size - 1 : qMin(to.toLongLong(), size - 1)};
}
