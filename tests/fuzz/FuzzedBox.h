// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QRandomGenerator>

/// The box that the page fuzzer's plugin runs in: harmless, but not simple.
namespace FuzzedBox {

/// No more than so many players, whose identifiers count from 1, are told apart.
constexpr int players = 16;

/// Makes files and scripts that pages can come across, has the recording platform answer with full records, and makes
/// sure that "reboot" is the box's own. Ends the program where it is not.
void fill();

/// Which player the platform makes next, if any.
void changePlayer(QRandomGenerator &random);

} // namespace FuzzedBox
