// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// The box's boot parameters, and among them the plugin's own: the resolution, which is kept in its manifest.
namespace BootParameters {

/// Whether the parameter is the plugin's own resolution.
bool isResolution(const QString &key);

/// The value. Of a key for which the platform writes none, what it wrote last.
QString value(const QString &key);

/// Takes a resolution such as "1280x720", keeps it and tells the page by an event. False if the text is no resolution
/// or the manifest follows the box's own.
bool setResolution(const QString &text);

/// Hands a parameter to the platform. False if it is none that pages may set, or the platform refuses.
bool setPlatformValue(const QString &key, const QString &value);

} // namespace BootParameters
