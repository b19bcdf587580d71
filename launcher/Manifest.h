// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// The manifest of the plugin in the box, which tells the plugin what to open, and the user's manifest over it.
namespace Manifest {

/// Makes page the home page or, if it is empty, goes back to the one that the manifest stands for: the demonstration
/// portal at portalPage, or another. False, and the reason in *error, if something is wrong with the manifest, which is
/// then left alone.
bool setHomePage(const QString &fileName, const QString &page, const QString &portalPage, QString *error);

/// False, and what is wrong in *error, if the page would have a resolution at which it could not be seen. A page may
/// have chosen such a one for the next start, in the user's manifest: that is put aside.
bool checkResolution(const QString &fileName, const QString &userFileName, QString *error);

} // namespace Manifest
