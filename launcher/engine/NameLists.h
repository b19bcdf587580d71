// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QString>

/// Lists of names by key, as the engine's data files hold them: "key: name name", with further lines indented, and
/// comments after "#".
namespace NameLists {

/// The lists of a resource as a JSON object of arrays.
QByteArray asJson(const QString &resource);

} // namespace NameLists
