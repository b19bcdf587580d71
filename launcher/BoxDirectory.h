// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// The box directory of a desk box, which has it for itself as long as this object lives.
class BoxDirectory
{
public:
    BoxDirectory() = default;
    ~BoxDirectory();
    BoxDirectory(const BoxDirectory &) = delete;
    BoxDirectory &operator=(const BoxDirectory &) = delete;

    /// Creates the directory if need be and takes it. Returns an ExitStatus, Done or the reason in *error.
    int open(const QString &path, QString *error);
    QString path() const { return m_path; }
    /// Gives a new box its files, if need be. Returns an ExitStatus; what is wrong has been said then.
    int fill() const;
    /// The port that the pages of this box have each time, since what a page stores belongs to its address. 0 if there
    /// is none yet.
    quint16 port() const;
    /// False if it cannot be kept for the next time.
    bool keepPort(quint16 port) const;

private:
    QString m_path;
    int m_lock = -1;
};
