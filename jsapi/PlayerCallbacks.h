// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The functions that the platform calls when something happens to a player. They run on the platform's threads and only
// pass the event on.

#pragma once

namespace KavroJS {

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
int telxpidcb(int id);
int telxpagecb(int id);

/// Registers all of them for a player.
void registerPlayerCallbacks(int id);

} // namespace KavroJS
