// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PluginManifest.h"

#include <QXmlStreamWriter>

namespace {

void writeSize(QXmlStreamWriter *xml, const QSize &size)
{
    xml->writeAttribute("width", QString::number(size.width()));
    xml->writeAttribute("height", QString::number(size.height()));
}

void writeWithAttribute(QXmlStreamWriter *xml, const QString &type, const QString &name, const QString &value)
{
    if (value.isNull())
        return;
    xml->writeEmptyElement("entry");
    xml->writeAttribute("type", type);
    xml->writeAttribute(name, value);
}

void writeWithText(QXmlStreamWriter *xml, const QString &type, const QString &text)
{
    if (text.isNull())
        return;
    xml->writeStartElement("entry");
    xml->writeAttribute("type", type);
    xml->writeCharacters(text);
    xml->writeEndElement();
}

void writeSystemwideResolution(QXmlStreamWriter *xml, const QSize &hd, const QSize &sd)
{
    xml->writeStartElement("size");
    xml->writeAttribute("type", "resolution");
    xml->writeAttribute("src", "systemwide");
    xml->writeEmptyElement("size");
    xml->writeAttribute("id", "HD");
    writeSize(xml, hd);
    xml->writeEmptyElement("size");
    xml->writeAttribute("id", "SD");
    writeSize(xml, sd);
    xml->writeEndElement();
}

void writeOwnResolution(QXmlStreamWriter *xml, const QSize &size)
{
    xml->writeEmptyElement("size");
    xml->writeAttribute("type", "resolution");
    writeSize(xml, size);
}

} // namespace

QByteArray PluginManifest::toXml() const
{
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.writeStartDocument();
    xml.writeStartElement("plugin_config");
    writeWithAttribute(&xml, "homepage", "src", homePage);
    writeWithAttribute(&xml, "errorpage", "src", errorPage);
    writeWithAttribute(&xml, "big_icon", "src", bigIcon);
    writeWithAttribute(&xml, "small_icon", "src", smallIcon);
    writeWithAttribute(&xml, "splash_image", "src", splashImage);
    writeWithAttribute(&xml, "supports_sd", "val", supportsSd ? "true" : QString());
    writeWithText(&xml, "text_size_multiplier", textSizeMultiplier);
    writeWithText(&xml, "brief_descr", briefDescription);
    writeWithText(&xml, "long_descr", longDescription);
    if (hdResolution)
        writeSystemwideResolution(&xml, *hdResolution, sdResolution);
    else if (!resolution.isNull())
        writeOwnResolution(&xml, resolution);
    xml.writeEndDocument();
    return text;
}
