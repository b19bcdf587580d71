// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QSize>

/// The box's graphics layer, which the launcher gives to the plugin and takes back.
namespace BoxScreen {

/// As the launcher has it.
QSize size();

void takeOver();
void setResolution(const QSize &size);
/// The launcher gets it as it gave it away.
void giveBack();

/// Models whose graphics layer lies above the video need a see-through window.
bool needsTranslucentWindow();

} // namespace BoxScreen
