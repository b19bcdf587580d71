// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QVector>

/// The descriptors that the process inside the box has of the one outside, apart from standard input and output.
namespace Descriptors {

/// Lists them in the environment of the process inside, where in-box and setInherited look.
constexpr char variable[] = "KAVRO_DESCRIPTORS";
QByteArray list(const QVector<int> &descriptors);

/// Whether a program that this process executes has these descriptors.
void setInherited(const QVector<int> &descriptors, bool inherited);
/// Inside, those that the environment lists.
QVector<int> given();

} // namespace Descriptors
