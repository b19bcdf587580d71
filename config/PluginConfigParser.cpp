// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "config/PluginConfigParser.h"

#include "common/other/plainfile.h"
#include "config/SystemSettings.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTextStream>

#include <unistd.h>

namespace {

const char manifestName[] = "PluginManifest.xml";
const char documentType[] = "kavro_mz412_plugin_configuration";
const char userManifests[] = "/home/user/config/plugins/";

QDomDocument emptyDocument()
{
    return QDomDocument(QLatin1String(documentType));
}

QString attribute(const QDomElement &element, const char *name)
{
    return element.attribute(QLatin1String(name));
}

QString textOf(const QDomElement &element)
{
    return element.firstChild().toText().data();
}

// What the part of the plugin's path below the launcher's folder is in the folder of the users' manifests.
QString userDirectory(const QDir &pluginDir)
{
    return QLatin1String(userManifests) + QLatin1Char('/')
        + pluginDir.absolutePath().remove(QCoreApplication::applicationDirPath());
}

} // namespace

PluginConfigParser *PluginConfigParser::inst_ = nullptr;

PluginConfigParser *PluginConfigParser::instance(const QDir &pluginDir)
{
    if (!inst_)
        inst_ = new PluginConfigParser(pluginDir);
    return inst_;
}

PluginConfigParser *PluginConfigParser::instance()
{
    return inst_;
}

void PluginConfigParser::destroyInstance()
{
    delete inst_;
    inst_ = nullptr;
}

PluginConfigParser::PluginConfigParser(const QDir &pluginDir)
    : valid(false)
    , document(emptyDocument())
    , pluginDir(pluginDir)
    , userDir(userDirectory(pluginDir))
    , textSizeMultiplier(1.0f)
    , language(QLatin1String(Common::getCurrentLanguage() == QLocale::Russian ? "rus" : "eng"))
    , systemwideResolution(false)
    , supportsSd(false)
{
    valid = read();
}

bool PluginConfigParser::read()
{
    Common::PlainFile pluginManifest(pluginDir.absoluteFilePath(QLatin1String(manifestName)));
    pluginManifest.open(QIODevice::ReadOnly); // an unopened file is one that does not parse
    if (!parse(&pluginManifest))
        return false;
    walkTheTree(document);

    Common::PlainFile userManifest(userDir.absoluteFilePath(QLatin1String(manifestName)));
    if (!userManifest.open(QIODevice::ReadOnly))
        return true;
    if (!parse(&userManifest))
        return false;
    walkTheTree(document);
    return true;
}

bool PluginConfigParser::parse(QIODevice *device)
{
    QString error;
    if (document.setContent(device, &error))
        return true;
    qDebug() << "parse error" << error;
    return false;
}

void PluginConfigParser::walkTheTree(const QDomNode &node)
{
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement())
            readEntry(child.toElement());
        walkTheTree(child);
    }
}

void PluginConfigParser::readEntry(const QDomElement &element)
{
    const QString type = attribute(element, "type");
    if (type == QLatin1String("big_icon")) {
        bigIcon = attribute(element, "src");
    } else if (type == QLatin1String("small_icon")) {
        smallIcon = attribute(element, "src");
    } else if (type == QLatin1String("splash_image")) {
        splashImage = attribute(element, "src");
    } else if (type == QLatin1String("brief_descr")) {
        briefDescription = textOf(element);
    } else if (type == QLatin1String("long_descr")) {
        const QString lang = attribute(element, "lang");
        if (lang.isEmpty() || lang == language)
            longDescription = textOf(element);
    } else if (type == QLatin1String("homepage")) {
        homePage = attribute(element, "src");
    } else if (type == QLatin1String("errorpage")) {
        errorPage = attribute(element, "src");
    } else if (type == QLatin1String("supports_sd")) {
        if (attribute(element, "val") == QLatin1String("true"))
            supportsSd = true;
    } else if (type == QLatin1String("text_size_multiplier")) {
        textSizeMultiplier = textOf(element).toFloat();
    } else if (type == QLatin1String("resolution")) {
        readResolution(element);
    }
}

void PluginConfigParser::readResolution(const QDomElement &element)
{
    if (attribute(element, "src") != QLatin1String("systemwide")) {
        parseSizeTag(element, resolution);
        return;
    }
    systemwideResolution = true;
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        const bool isHd = attribute(child.toElement(), "id") == QLatin1String("HD");
        parseSizeTag(child, isHd ? hdResolution : sdResolution);
    }
}

bool PluginConfigParser::parseSizeTag(const QDomNode &node, QSize &size)
{
    const QDomElement element = node.toElement();
    bool ok;
    size.setWidth(attribute(element, "width").toInt());
    size.setHeight(attribute(element, "height").toInt(&ok));
    return ok;
}

QSize PluginConfigParser::currentResolution() const
{
    if (!systemwideResolution)
        return resolution;
    return Common::getDisplayMode() == 1920 ? hdResolution : sdResolution;
}

bool PluginConfigParser::setResolution(const QSize &size)
{
    resolution = size;
    return true;
}

bool PluginConfigParser::save()
{
    userDir.mkpath(QLatin1String("."));
    Common::PlainFile file(userDir.absoluteFilePath(QLatin1String(manifestName)));
    QTextStream stream(&file);
    const bool isOpen = file.open(QIODevice::ReadWrite | QIODevice::Truncate);

    QDomDocument manifest = emptyDocument();
    QDomElement root = manifest.createElement(QLatin1String("plugin_config"));
    manifest.appendChild(root);
    QDomElement size = manifest.createElement(QLatin1String("size"));
    size.setAttribute(QLatin1String("type"), QLatin1String("resolution"));
    size.setAttribute(QLatin1String("width"), resolution.width());
    size.setAttribute(QLatin1String("height"), resolution.height());
    root.appendChild(size);
    if (isOpen)
        manifest.save(stream, 4);

    // The launcher expects the disk to be busy now; the last of the text follows when file and stream are closed.
    sync();
    return true;
}
