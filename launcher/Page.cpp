// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Page.h"

#include "BoxDirectory.h"
#include "Places.h"
#include "Report.h"
#include "ServedFile.h"

#include <QFileInfo>
#include <QUrl>

#include <algorithm>

namespace {

const char portalPage[] = "index.html";

// "localhost:8080" has a scheme too, by the letter.
bool isAddress(const QString &argument)
{
    static const QStringList schemes = {"http", "https", "file", "about", "data"};
    const QUrl url(argument);
    const QString scheme = url.scheme();
    const bool needsHost = scheme.startsWith("http");
    return url.isValid() && schemes.contains(scheme) && (!needsHost || !url.host().isEmpty());
}

bool isServed(const QFileInfo &file)
{
    return ServedFile(QFileInfo(file.absolutePath()).canonicalFilePath(), file.fileName()).isOpen();
}

} // namespace

bool Page::setArgument(const QString &argument, QString *error)
{
    const QFileInfo file(argument);
    if (argument.isEmpty()) {
        m_folder = Places::portal();
    } else if (file.isFile() && file.isReadable()) {
        return setFile(argument, error);
    } else if (isAddress(argument)) {
        m_address = argument;
    } else {
        *error = QString("\"%1\" is neither the address of a page, as http://host/, nor a file").arg(argument);
        return false;
    }
    return true;
}

bool Page::isInBox(const QString &boxDirectory, const QStringList &shared) const
{
    const QString file = QUrl(m_address).toLocalFile();
    if (file.isEmpty() || !QFileInfo::exists(file) || file.startsWith("/usr/")
        || QFileInfo::exists(boxDirectory + file))
        return true;
    const QString path = QFileInfo(file).canonicalFilePath();
    return std::any_of(shared.begin(), shared.end(), [&path](const QString &option) {
        const QString folder = QFileInfo(option).canonicalFilePath();
        return !folder.isEmpty() && path.startsWith(folder + '/');
    });
}

bool Page::setFile(const QString &argument, QString *error)
{
    QFileInfo file(argument);
    if (!isServed(file)) { // a link out of its folder stands for the file that it leads to, with what lies beside that
        file.setFile(file.canonicalFilePath());
        if (!isServed(file)) {
            *error = QString("%1 cannot be shown, because files whose names begin with a dot are not served; give it "
                             "another name")
                         .arg(file.filePath());
            return false;
        }
        report(QString("\"%1\" is a link to %2, whose folder is served").arg(argument, file.filePath()));
    }
    m_folder = file.absolutePath();
    m_file = file.fileName();
    return true;
}

bool Page::serve(const BoxDirectory &box, QString *error)
{
    if (m_folder.isEmpty())
        return true;
    const quint16 kept = box.port();
    if (!m_server.start(m_folder, kept, error))
        return false;
    if (kept == 0 && !box.keepPort(m_server.port()))
        report(QString("the address of the pages cannot be kept in %1/port, so what they store is not found the next "
                       "time; let that be a file that can be written")
                   .arg(box.path()));
    else if (kept != 0 && m_server.port() != kept)
        report(
            QString("port %1 of 127.0.0.1, where the pages of this box are, is taken, so their address is another one "
                    "and what they have stored is not found this time; end the program that listens there")
                .arg(kept));
    if (m_file.isEmpty())
        m_portalAddress = m_server.address(portalPage).toString(QUrl::FullyEncoded);
    else
        m_address = m_server.address(m_file).toString(QUrl::FullyEncoded);
    return true;
}
