// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

#include <optional>

/// A key press as a keyboard or a remote control sends it.
struct Key
{
    int code = 0; ///< Qt::Key
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    QString text; ///< what the key types

    /// The key of this name of Qt ("Down", "VolumeUp", "Ctrl+L"), or that types this character; nothing without one.
    static std::optional<Key> named(const QString &name);
    static Key typing(QChar character);
};
