// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Manifest.h"

#include "ManifestText.h"
#include "common/other/regularfile.h"

#include <QFile>
#include <QSaveFile>
#include <QSize>
#include <QTextCodec>
#include <QXmlStreamReader>

#include <fcntl.h>

namespace {

const char address[] = "src";
// What the home page is when the command line names none: an address, or "portal".
const char deskPage[] = "desk-page";
const char byteOrderMark[] = "\xef\xbb\xbf";
const char portal[] = "portal";

// No box's screen is smaller or larger; of a page that is, little or nothing could be seen.
const QSize smallestPage(320, 240);
const QSize largestPage(7680, 4320);

std::optional<QByteArray> contentOf(const QString &fileName, QString *error)
{
    std::string oddity;
    const int descriptor =
        Common::openRegular(QFile::encodeName(fileName).toStdString(), O_RDONLY, Common::largestText, &oddity);
    if (descriptor < 0)
        *error = oddity.empty() ? QString("%1 cannot be read (%2)").arg(fileName, qt_error_string())
                                : QString::fromLocal8Bit(oddity.c_str());
    QFile file;
    if (descriptor < 0 || !file.open(descriptor, QIODevice::ReadOnly, QFile::AutoCloseHandle))
        return std::nullopt;
    return file.readAll();
}

// The page's own size; nothing if the manifest has none, or cannot be read, which the plugin says.
std::optional<QSize> resolutionOf(const QString &fileName)
{
    QString error;
    QXmlStreamReader reader(contentOf(fileName, &error).value_or(QByteArray()));
    reader.setNamespaceProcessing(false);
    std::optional<QSize> resolution;
    while (!reader.atEnd()) {
        reader.readNext();
        const QXmlStreamAttributes attributes = reader.attributes();
        if (reader.isStartElement() && attributes.value("type") == QLatin1String("resolution")
            && attributes.value(address) != QLatin1String("systemwide"))
            resolution = QSize(attributes.value("width").toInt(), attributes.value("height").toInt());
    }
    return reader.hasError() ? std::nullopt : resolution;
}

// False, and the sentence in *error, if nothing could be seen at the resolution of a manifest.
bool isSeenAt(const QSize &resolution, const QString &fileName, QString *error)
{
    if (resolution.expandedTo(smallestPage) == resolution && resolution.boundedTo(largestPage) == resolution)
        return true;
    *error = QString("%1 has a resolution of %2x%3, at which the page could not be seen")
                 .arg(fileName, QString::number(resolution.width()), QString::number(resolution.height()));
    return false;
}

QTextCodec *codecOf(const QByteArray &content)
{
    QXmlStreamReader reader(content);
    reader.readNext();
    QTextCodec *codec = QTextCodec::codecForName(reader.documentEncoding().toLatin1());
    return codec ? codec : QTextCodec::codecForName("UTF-8");
}

void choose(ManifestText *manifest, const QString &page, const QString &portalPage)
{
    const QString usual = manifest->attribute(deskPage).value_or(manifest->attribute(address).value_or(QString()));
    if (!page.isEmpty()) {
        manifest->setAttribute(address, page);
        manifest->setAttribute(deskPage, usual);
    } else if (usual == QLatin1String(portal)) {
        manifest->setAttribute(address, portalPage);
    } else {
        manifest->setAttribute(address, usual);
        manifest->setAttribute(deskPage, std::nullopt);
    }
}

} // namespace

bool Manifest::setHomePage(const QString &fileName, const QString &page, const QString &portalPage, QString *error)
{
    const std::optional<QByteArray> found = contentOf(fileName, error);
    if (!found)
        return false;
    const QByteArray &content = *found;
    const QByteArray mark = content.startsWith(byteOrderMark) ? byteOrderMark : "";
    QTextCodec *codec = codecOf(content);
    const QString text = codec->toUnicode(content);
    if (mark + codec->fromUnicode(text) != content) {
        *error = QString("%1 is malformed (it is not in its encoding, %2)")
                     .arg(fileName, QString::fromLatin1(codec->name()));
        return false;
    }
    ManifestText manifest(text);
    if (!manifest.isValid()) {
        *error = QString("%1 is malformed (%2)").arg(fileName, manifest.errorString());
        return false;
    }

    choose(&manifest, page, portalPage);
    const QByteArray changed = mark + codec->fromUnicode(manifest.text());
    if (changed == content)
        return true;
    QSaveFile replacement(fileName);
    if (replacement.open(QIODevice::WriteOnly) && replacement.write(changed) == changed.size() && replacement.commit())
        return true;
    *error = QString("%1 cannot be written (%2)").arg(fileName, replacement.errorString());
    return false;
}

bool Manifest::checkResolution(const QString &fileName, const QString &userFileName, QString *error)
{
    const std::optional<QSize> resolution = resolutionOf(fileName);
    const std::optional<QSize> userResolution = resolutionOf(userFileName);
    if (!userResolution) {
        if (!resolution || isSeenAt(*resolution, fileName, error))
            return true;
        *error += "; give it one such as 1280x720";
        return false;
    }
    if (isSeenAt(*userResolution, userFileName, error))
        return true;
    const QString putAside = userFileName + ".unusable";
    QFile::remove(putAside);
    if (QFile::rename(userFileName, putAside))
        *error += QString("; it is now %1, and the plugin's own resolution is used").arg(putAside);
    else
        *error += "; remove it";
    return false;
}
