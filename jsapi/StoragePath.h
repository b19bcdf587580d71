// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDir>
#include <QStringList>

/// Where the box keeps files for pages.
extern const char storageRoot[];

/// Where the HTML5 local storage of pages is kept, once a page has switched it on.
extern const char localStorageDirectory[];

/// The path as the platform's players take it: put below the storage root unless the root occurs in it somewhere. No
/// separator is added.
QString storagePath(const QString &path);

/// The names, not paths, of a directory's entries of one kind (QDir::Dirs or QDir::Files), sorted. Hidden ones are left
/// out, links count as what they point to. A directory that does not exist has none.
QStringList entryNames(const QString &directory, QDir::Filters kind);
