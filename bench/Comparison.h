// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Table.h"

#include <QMap>
#include <QVector>
#include <functional>
#include <optional>

/// Measures the plugin beside other programs, in turns, and tells how they compare.
class Comparison
{
public:
    /// What must hold of the medians.
    struct Limit
    {
        enum Kind { RatioAtMost, RatioAtLeast, DifferenceAtMost, PluginAtMost };

        Kind kind;
        double value;
    };

    /// A row's name, and the unit of its figures with their number of decimals.
    struct Quantity
    {
        QString name;
        QString unit;
        int decimals;
    };

    /// One figure of one start of a program.
    using Measure = std::function<double(const QString &program)>;

    static QStringList columns();

    /// Has each program measured in each round, in changing order. The plugin's program is the first.
    Comparison(const Quantity &quantity, const QStringList &programs, int rounds, const Measure &measure);

    /// A row of the plugin beside one of the others.
    void addRow(Table *table, const QString &program, std::optional<Limit> limit = {}) const;

    /// A row of the plugin alone.
    static void addFigures(Table *table, const Quantity &quantity, const QVector<double> &plugin);

private:
    QVector<double> perRound(const QString &program, std::optional<Limit> limit) const;
    QString text(const QVector<double> &values) const;
    QString text(const Limit &limit) const;

    const Quantity m_quantity;
    const QString m_plugin;
    QMap<QString, QVector<double>> m_values;
};
