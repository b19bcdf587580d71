// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// Script that puts, in a new page, a guard before each of the script objects, under the same name and with the same
/// members. Values that crash the engine on their way to a slot are stopped there, dates arrive as they were sent, and
/// a call costs less, since the guard's members are found faster than those of a QObject. It needs a RecordTimes under
/// the name recordTimes, which it takes away from the page.
QString pageGuardScript();
