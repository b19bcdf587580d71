// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Comparison.h"

#include "Statistics.h"

#include <algorithm>

namespace {

using Limit = Comparison::Limit;

QString quartilesText(const QVector<double> &values, int decimals)
{
    const Statistics::Quartiles quartiles = Statistics::quartiles(values);
    return QString("%1 (%2 to %3)")
        .arg(quartiles.median, 0, 'f', decimals)
        .arg(quartiles.lower, 0, 'f', decimals)
        .arg(quartiles.upper, 0, 'f', decimals);
}

bool keeps(const Limit &limit, double figure)
{
    return limit.kind == Limit::RatioAtLeast ? figure >= limit.value : figure <= limit.value;
}

QJsonArray json(const QVector<double> &values)
{
    QJsonArray array;
    for (double value : values)
        array += value;
    return array;
}

} // namespace

QStringList Comparison::columns()
{
    return {"measured", "beside", "runs each", "plugin", "the other", "compared", "limit", "kept"};
}

Comparison::Comparison(const Quantity &quantity, const QStringList &programs, int rounds, const Measure &measure)
    : m_quantity(quantity)
    , m_plugin(programs.first())
{
    QStringList order = programs;
    for (int round = 0; round < rounds; ++round) {
        for (const QString &program : std::as_const(order))
            m_values[program] += measure(program);
        std::rotate(order.begin(), order.begin() + 1, order.end());
    }
}

void Comparison::addRow(Table *table, const QString &program, std::optional<Limit> limit) const
{
    const QVector<double> &plugin = m_values[m_plugin];
    const QVector<double> &other = m_values[program];
    const QVector<double> compared = perRound(program, limit);
    const bool isDifference = limit && limit->kind == Limit::DifferenceAtMost;
    const double figure =
        limit && limit->kind == Limit::PluginAtMost ? Statistics::median(plugin) : Statistics::median(compared);
    const bool isKept = !limit || keeps(*limit, figure);
    table->addRow(
        {m_quantity.name, program, QString::number(plugin.size()), text(plugin), text(other),
         isDifference ? text(compared) : quartilesText(compared, 2) + " times", limit ? text(*limit) : "",
         limit ? (isKept ? "yes" : "no") : ""},
        {{"unit", m_quantity.unit}, {"plugin", json(plugin)}, {program, json(other)}, {"compared", json(compared)}},
        isKept);
}

void Comparison::addFigures(Table *table, const Quantity &quantity, const QVector<double> &plugin)
{
    table->addRow({quantity.name, "", QString::number(plugin.size()),
                   quartilesText(plugin, quantity.decimals) + ' ' + quantity.unit, "", "", "", ""},
                  {{"unit", quantity.unit}, {"plugin", json(plugin)}});
}

QVector<double> Comparison::perRound(const QString &program, std::optional<Limit> limit) const
{
    const bool isDifference = limit && limit->kind == Limit::DifferenceAtMost;
    const QVector<double> &others = m_values[program];
    QVector<double> result;
    std::transform(m_values[m_plugin].begin(), m_values[m_plugin].end(), others.begin(), std::back_inserter(result),
                   [&](double plugin, double other) { return isDifference ? plugin - other : plugin / other; });
    return result;
}

QString Comparison::text(const QVector<double> &values) const
{
    return quartilesText(values, m_quantity.decimals) + ' ' + m_quantity.unit;
}

QString Comparison::text(const Limit &limit) const
{
    const QString number = QString::number(limit.value);
    switch (limit.kind) {
    case Limit::RatioAtMost:
        return "at most " + number + " times";
    case Limit::RatioAtLeast:
        return "at least " + number + " times";
    case Limit::DifferenceAtMost:
        return "at most " + number + ' ' + m_quantity.unit + " more";
    case Limit::PluginAtMost:
        return "plugin at most " + number + ' ' + m_quantity.unit;
    }
    return {};
}
