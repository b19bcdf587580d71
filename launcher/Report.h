// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

#include <functional>

/// Says one line of the launcher's own to the user: on standard error, or by what setReporter() was given. On any
/// thread.
void report(const QString &text);
/// The same without waiting for anything, and the line may be lost. For a thread that must go on.
void reportNow(const QString &text);

/// The text is one line, without "kavro-box: " before it. To be set while no other thread reports; null for standard
/// error.
using Reporter = std::function<void(const QByteArray &text, bool mayWait)>;
void setReporter(Reporter reporter);
