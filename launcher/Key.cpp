// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Key.h"

#include <QKeySequence>
#include <QMetaEnum>

namespace {

// What the keys type that have a name and still type something.
QString typedBy(int code)
{
    switch (code) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return "\r";
    case Qt::Key_Tab:
        return "\t";
    case Qt::Key_Backspace:
        return "\b";
    case Qt::Key_Escape:
        return "\x1b";
    case Qt::Key_Delete:
        return "\x7f";
    case Qt::Key_Space:
        return " ";
    default:
        return {};
    }
}

} // namespace

Key Key::typing(QChar character)
{
    const Qt::KeyboardModifiers shift = character.isUpper() ? Qt::ShiftModifier : Qt::NoModifier;
    return {character.toUpper().unicode(), shift, character};
}

std::optional<Key> Key::named(const QString &name)
{
    if (name.size() == 1 && name.at(0).isPrint())
        return typing(name.at(0));

    bool found = false;
    const int code = QMetaEnum::fromType<Qt::Key>().keyToValue("Key_" + name.toUtf8(), &found);
    if (found && code != Qt::Key_unknown)
        return Key{code, Qt::NoModifier, typedBy(code)};

    const QKeySequence sequence = QKeySequence::fromString(name, QKeySequence::PortableText);
    const int combined = sequence.count() == 1 ? sequence[0] : int(Qt::Key_unknown);
    const int base = combined & ~int(Qt::KeyboardModifierMask);
    if (base == 0 || (combined & Qt::Key_unknown) == Qt::Key_unknown)
        return std::nullopt;
    const auto modifiers = Qt::KeyboardModifiers(combined & int(Qt::KeyboardModifierMask));
    return Key{base, modifiers, modifiers == Qt::NoModifier ? typedBy(base) : QString()};
}
