// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

namespace KavroJSDeprecated {

/// The older twin of StbDisplay: other names, answers as JSON text.
class stb_display : public QObject
{
    Q_OBJECT

public:
};

} // namespace KavroJSDeprecated
