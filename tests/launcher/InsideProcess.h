// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>

#include <sys/types.h>

/// The process inside the box whose page has this address; 0 if there is none.
pid_t insideProcess(const QByteArray &address);
