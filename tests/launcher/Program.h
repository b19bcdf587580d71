// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QProcess>
#include <QTemporaryDir>

/// A program of the build tree, run by a test.
class Program : public QProcess
{
    Q_OBJECT

public:
    /// path: below the build tree, such as "bin/kavro-box".
    explicit Program(const QString &path);
    ~Program() override;

    /// Waits for the end of a program that was started, or starts it with these arguments. Returns its exit status; a
    /// negative number if it was killed or did not end in time.
    int finish();
    int run(const QStringList &arguments);

    /// All that it has written so far.
    QByteArray output();
    QByteArray errors();

    /// Sets or, with a null value, unsets an environment variable for the next start.
    void setVariable(const QString &name, const QString &value);

    static QString inBuildTree(const QString &path);

private:
    QByteArray m_output;
    QByteArray m_errors;
};

/// What a test reads and writes of a file from outside.
QByteArray contentOf(const QString &fileName);
/// Creates the folders above the file as well.
bool writeFile(const QString &fileName, const QByteArray &content);
