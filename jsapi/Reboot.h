// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

/// Has the box start anew. Returns when the command that does so has returned.
void rebootBox();
