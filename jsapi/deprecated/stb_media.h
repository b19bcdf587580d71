// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

namespace KavroJSDeprecated {

/// The older twin of StbMedia: other names, answers as JSON text.
class stb_media : public QObject
{
    Q_OBJECT

public:
    int lastEventId;
    int lastEventType;

signals:
    int jsCallback(QString jsCode);
};

} // namespace KavroJSDeprecated
