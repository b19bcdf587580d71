// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Manifest.h"

#include "ManifestText.h"

#include <QFile>
#include <QSaveFile>
#include <QTextCodec>
#include <QXmlStreamReader>

namespace {

const char address[] = "src";
// What the home page is when the command line names none: an address, or "portal".
const char deskPage[] = "desk-page";
const char byteOrderMark[] = "\xef\xbb\xbf";
const char portal[] = "portal";

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

QString Manifest::setHomePage(const QString &fileName, const QString &page, const QString &portalPage)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QString("%1 cannot be read (%2)").arg(fileName, file.errorString());
    const QByteArray content = file.readAll();
    const QByteArray mark = content.startsWith(byteOrderMark) ? byteOrderMark : "";
    QTextCodec *codec = codecOf(content);
    const QString text = codec->toUnicode(content);
    if (mark + codec->fromUnicode(text) != content)
        return QString("%1 is malformed (it is not in its encoding, %2)")
            .arg(fileName, QString::fromLatin1(codec->name()));
    ManifestText manifest(text);
    if (!manifest.isValid())
        return QString("%1 is malformed (%2)").arg(fileName, manifest.errorString());

    choose(&manifest, page, portalPage);
    const QByteArray changed = mark + codec->fromUnicode(manifest.text());
    if (changed == content)
        return {};
    QSaveFile replacement(fileName);
    if (!replacement.open(QIODevice::WriteOnly) || replacement.write(changed) != changed.size()
        || !replacement.commit())
        return QString("%1 cannot be written (%2)").arg(fileName, replacement.errorString());
    return {};
}
