// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The functions that the platform calls when something happens to the box's outputs. They run on the platform's threads
// and only pass the event on.

#pragma once

namespace KavroJS {

int hdmicb(int argument);
int syncdonecb(int argument);
/// Nothing registers it: while pages are in charge of the outputs, nobody hears of them.
int outportcb(int argument);

} // namespace KavroJS
