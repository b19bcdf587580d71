// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Table.h"

#include <QFile>
#include <QJsonDocument>
#include <QTextStream>
#include <cstdio>

Table::Table(const QString &name, const QStringList &columns)
    : m_name(name)
    , m_columns(columns)
{
}

void Table::addRow(const QStringList &cells, const QJsonObject &figures, bool keepsLimits)
{
    m_rows += cells;
    QJsonObject row = figures;
    row["row"] = cells.first();
    row["keepsLimits"] = keepsLimits;
    m_figures += row;
    m_keepsLimits = m_keepsLimits && keepsLimits;
}

int Table::finish() const
{
    print();
    return write() && m_keepsLimits ? 0 : 1;
}

void Table::print() const
{
    QTextStream out(stdout);
    out << "| " << m_columns.join(" | ") << " |\n";
    out << QString("|---").repeated(m_columns.size()) << "|\n";
    for (const QStringList &cells : m_rows)
        out << "| " << cells.join(" | ") << " |\n";
}

bool Table::write() const
{
    QFile file(m_name + ".json");
    const QByteArray text = QJsonDocument(QJsonObject{{"benchmark", m_name}, {"rows", m_figures}}).toJson();
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size())
        return true;
    std::fprintf(stderr, "%s cannot be written (%s); run the benchmark in a folder of yours\n",
                 qPrintable(file.fileName()), qPrintable(file.errorString()));
    return false;
}
