// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QVector>

/// What the benchmarks make of many measurements.
namespace Statistics {

struct Quartiles
{
    double lower = 0;
    double median = 0;
    double upper = 0;
};

/// Of at least one value.
Quartiles quartiles(QVector<double> values);
double median(const QVector<double> &values);

/// A straight line through values at 0, 1, 2, ...: its rise from one to the next, and the standard error of that.
struct Slope
{
    double rise = 0;
    double error = 0;
};

/// Of at least three values.
Slope slope(const QVector<double> &values);

} // namespace Statistics
