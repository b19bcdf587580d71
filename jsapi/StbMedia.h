// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

namespace KavroJS {

/// The script object StbMedia: players, tracks, sound and player events.
class StbMedia : public QObject
{
    Q_OBJECT

public:
    /// The one object of the process, made by the first call.
    static StbMedia *instance();
    static void destroyInstance();

    void setLastEvent(int id, int type);

signals:
    int jsCallback(QString jsCode);

private:
    static StbMedia *inst_;
};

} // namespace KavroJS
