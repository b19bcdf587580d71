// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "OtherPlugin.h"
