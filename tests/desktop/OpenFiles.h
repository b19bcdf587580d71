// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QDir>

#include <algorithm>

/// Whether this process has a file of this name open.
inline bool isOpen(const char *path)
{
    const QFileInfoList links = QDir("/proc/self/fd").entryInfoList(QDir::Files | QDir::System);
    return std::any_of(links.begin(), links.end(), [=](const QFileInfo &link) { return link.symLinkTarget() == path; });
}
