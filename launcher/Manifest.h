// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// The manifest of the plugin in the box, which tells the plugin what to open, and the user's manifest over it.
namespace Manifest {

/// Makes page the home page or, if it is empty, goes back to the one that the manifest stands for: the demonstration
/// portal at portalPage, or another. Returns what is wrong with the manifest, which is then left alone, or nothing.
QString setHomePage(const QString &fileName, const QString &page, const QString &portalPage);

/// Says whether the page would have a resolution at which it could not be seen, or nothing. A page may have chosen such
/// a one for the next start, in the user's manifest: that is put aside.
QString checkResolution(const QString &fileName, const QString &userFileName);

} // namespace Manifest
