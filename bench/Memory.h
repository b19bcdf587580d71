// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QtGlobal>

/// The memory of processes, in bytes.
namespace Memory {

/// The part of the memory that is there for this process and the ones it has started: what processes share is divided
/// among them. Swapped pages count.
double shareOfTree(qint64 process);

/// What this process has allocated and touched, whether shared or not: its program files do not count.
double allocatedHere();

} // namespace Memory
