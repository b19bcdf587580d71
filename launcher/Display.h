// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// How the desk box can be shown on this PC.
namespace Display {

/// Whether a display server answers.
bool isReachable();
/// The Qt platform to show windows with.
QString platform();
/// Whether the plugin of this Qt platform is installed.
bool isInstalled(const QString &platform);

} // namespace Display
