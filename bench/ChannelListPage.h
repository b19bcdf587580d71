// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>

/// The page that all programs show: a portal's list of channels, 200 KB of text. It asks its server for /ready when it
/// is on the screen.
QByteArray channelListPage();
