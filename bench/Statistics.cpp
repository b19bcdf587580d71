// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Statistics.h"

#include <algorithm>
#include <cmath>

namespace {

double quantile(const QVector<double> &sorted, double part)
{
    const double place = part * (sorted.size() - 1);
    const int below = int(place);
    const int above = std::min(below + 1, sorted.size() - 1);
    return sorted.at(below) + (place - below) * (sorted.at(above) - sorted.at(below));
}

} // namespace

Statistics::Quartiles Statistics::quartiles(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return {quantile(values, 0.25), quantile(values, 0.5), quantile(values, 0.75)};
}

double Statistics::median(const QVector<double> &values)
{
    return quartiles(values).median;
}

Statistics::Slope Statistics::slope(const QVector<double> &values)
{
    const int n = values.size();
    const double meanPlace = (n - 1) / 2.0;
    double mean = 0;
    for (double value : values)
        mean += value / n;
    double products = 0;
    double squares = 0;
    for (int i = 0; i < n; ++i) {
        products += (i - meanPlace) * (values.at(i) - mean);
        squares += (i - meanPlace) * (i - meanPlace);
    }
    const double rise = products / squares;
    double residues = 0;
    for (int i = 0; i < n; ++i) {
        const double residue = values.at(i) - mean - rise * (i - meanPlace);
        residues += residue * residue;
    }
    return {rise, std::sqrt(residues / (n - 2) / squares)};
}
