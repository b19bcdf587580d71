// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// What the box is called, its version, and its address on the network.
namespace DeviceIdentity {

/// Of the wired network, in lower case; empty without one.
QString hardwareAddress();
/// The first address of the wired network; empty without one.
QString ipAddress();

/// Of its software, as a file of the box tells it; empty without one.
QString versionInFile();

/// The model, if the platform hands out a text at all, whatever its result; else empty.
QString model();

typedef int (*TextQuery)(char **text);

/// The text that the platform hands out, or the fallback if it has none.
QString platformText(TextQuery query, const char *fallback);

} // namespace DeviceIdentity
