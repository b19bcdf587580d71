// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Subject.h"

#include <functional>
#include <memory>

/// What a benchmark has one process do: `PROGRAM TASK PAGE ROUNDS COUNT`. Its measurements go to standard output as one
/// JSON array.
namespace Tasks {

/// What is measured, and what has to be done after each round so that only its own memory is.
struct Setting
{
    std::function<std::unique_ptr<Subject>()> create;
    std::function<void()> afterRound;
};

/// Does the task that the application's arguments name. The program's exit status.
int run(const Setting &setting);

} // namespace Tasks
