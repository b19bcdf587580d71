// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QFile>

namespace Common {

/// A text of the box, in whose place anything may stand: to open it waits for nothing, and fails for all but a regular
/// file of a sensible size. The message log is then told once what stands there. To be opened once: from then on the
/// toolkit does not know the name any more.
class PlainFile : public QFile
{
public:
    explicit PlainFile(const QString &path, QObject *parent = nullptr);
    ~PlainFile() override;

    /// Of at most largestText bytes.
    bool open(OpenMode mode) override;
    bool open(OpenMode mode, long long largest);
    void close() override;
};

/// Whether something else than a file of at most so many bytes is in its place, of which the message log is told once.
bool isOdd(const QString &path, long long largest);

} // namespace Common
