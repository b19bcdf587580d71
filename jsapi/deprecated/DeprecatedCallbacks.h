// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The older objects' twins of the functions in PlayerCallbacks.h and DisplayCallbacks.h: they do the same, and have
// addresses of their own, by which a platform tells them apart.

#pragma once

namespace KavroJSDeprecated {

int statcb(int id);
int metacb(int id);
int poscb(int id);
int audcb(int id);
int vidcb(int id);
int subcb(int id);
int volcb(int id);
int zoomcb(int id);
int mutecb(int id);
int multcb(int id);
/// Nothing registers it.
int outportcb(int argument);

/// Registers all but the last for a player.
void registerPlayerCallbacks(int id);

} // namespace KavroJSDeprecated
