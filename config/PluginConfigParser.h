// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDir>
#include <QDomDocument>
#include <QSize>
#include <QString>

/// The plugin manifest, read from the plugin's directory, with the user's own manifest laid over it. The user's
/// manifest holds the resolution that the user chose, and is the only one that is ever written.
class PluginConfigParser
{
public:
    /// The one parser of the process; made from pluginDir, and the manifests read, by the first call.
    static PluginConfigParser *instance(const QDir &pluginDir);
    /// The one parser of the process, or null while there is none.
    static PluginConfigParser *instance();
    static void destroyInstance();

    explicit PluginConfigParser(const QDir &pluginDir);

    /// The resolution of the graphics layer: the manifest's own, or the one of the box's display mode.
    QSize currentResolution() const;
    /// Changes the resolution in memory. Always true.
    bool setResolution(const QSize &size);
    /// Writes the user's manifest, with the resolution alone. Always true, even if nothing could be written.
    bool save();

    bool valid;            ///< both manifests were read without a parse error
    QDomDocument document; ///< the manifest read last
    QDir pluginDir;
    QDir userDir;
    float textSizeMultiplier;
    QString language; ///< "rus" or "eng"
    QString smallIcon;
    QString bigIcon;
    QString splashImage;
    QString briefDescription;
    QString longDescription;
    QString homePage;
    QString errorPage;
    QSize resolution;
    bool systemwideResolution; ///< hdResolution and sdResolution count instead of resolution
    QSize hdResolution;
    QSize sdResolution;
    bool supportsSd;

private:
    bool read();
    bool parse(QIODevice *device);
    void walkTheTree(const QDomNode &node);
    void readEntry(const QDomElement &element);
    void readResolution(const QDomElement &element);
    static bool parseSizeTag(const QDomNode &node, QSize &size);

    static PluginConfigParser *inst_;
};
