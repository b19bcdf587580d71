// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>

/// What the box writes, made fit for a terminal that the user trusts. It is UTF-8, and one line.
namespace TerminalText {

/// Control characters, invisible ones and what is no UTF-8 are shown as text, so that the terminal obeys none of them.
/// What looks like the beginning of a line of the launcher's own gets a backslash: "kavro-box\:".
QByteArray harmless(const QByteArray &line);

} // namespace TerminalText
