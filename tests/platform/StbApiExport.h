// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

// The library hides everything else that it does not mean to offer.
#pragma GCC visibility push(default)
#include "platform/stbapi.h"
#pragma GCC visibility pop
