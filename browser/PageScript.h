// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// The text of resources/page/NAME.js, a script that the plugin puts into pages.
QString pageScript(const char *name);
