// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>
#include <optional>

/// The fields of a PluginManifest.xml for a test, in which a null text leaves the element out.
struct PluginManifest
{
    QString homePage = "about:blank";
    QString errorPage;
    QSize resolution = {1280, 720}; ///< a null size leaves it out
    /// Makes the resolution follow the system's display mode, in place of resolution.
    std::optional<QSize> hdResolution;
    QSize sdResolution;
    QString textSizeMultiplier;
    QString briefDescription;
    QString longDescription;
    QString bigIcon;
    QString smallIcon;
    QString splashImage;
    bool supportsSd = false;

    QByteArray toXml() const;
};
