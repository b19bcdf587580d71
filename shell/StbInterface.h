// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <QtPlugin>

/// What a launcher may ask of any of its plugins. The order of the virtual functions is part of the interface.
class StbInterface
{
public:
    virtual ~StbInterface() { }

    /// The kind of application; 1 is a CStbApplication.
    virtual int type() = 0;
    /// Where the plugin lives, relative to the folder that holds the launcher's plugins.
    virtual QString relativePath() const = 0;
    /// Tells the plugin the directory that it was loaded from, and thereby starts it.
    virtual void setFullPath(const QString &path) { Q_UNUSED(path) }
    virtual QString pluginVersion() const = 0;
    /// Revision of the sources, 40 hexadecimal digits.
    virtual QString vcsVersion() const = 0;
    /// Time and date of the build.
    virtual QString compilationTime() const = 0;
    /// Whether the application can be used in standard definition.
    virtual bool supportsSD() const { return false; }
    /// Whether the launcher asks for its password before it starts the application.
    virtual bool needPassword() const { return true; }
};

#define KAVRO_STB_INTERFACE_ID "com.Kavro.Plugin.StbInterface/2.0"

Q_DECLARE_INTERFACE(StbInterface, KAVRO_STB_INTERFACE_ID)
