// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

/// The result of a benchmark: a table for the documents, on standard output, and the same with all figures in a file
/// NAME.json of the current directory.
class Table
{
public:
    Table(const QString &name, const QStringList &columns);

    /// A cell for each column, and the figures that they come from. keepsLimits is false for a row that is worse than
    /// its limit says.
    void addRow(const QStringList &cells, const QJsonObject &figures, bool keepsLimits = true);

    /// Prints and writes the table. The exit status of the benchmark: 1 if a row does not keep its limits or the file
    /// cannot be written.
    int finish() const;

private:
    void print() const;
    bool write() const;

    const QString m_name;
    const QStringList m_columns;
    QList<QStringList> m_rows;
    QJsonArray m_figures;
    bool m_keepsLimits = true;
};
