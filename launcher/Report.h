// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// Says one line of the launcher's own to the user: on standard error, or by what setReporter() was given. On any
/// thread.
void report(const QString &text);
/// The same without waiting for anything, and without memory for it; the line may be lost. For a thread that must go
/// on. The text is a line as it is to be shown.
void reportNow(const QByteArray &text);

/// The text is one line, without "kavro-box: " before it. To be set while no other thread reports; null for standard
/// error.
using Reporter = std::function<void(const QByteArray &text, bool mayWait)>;
void setReporter(Reporter reporter);
