// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

namespace KavroJS {

/// The script object StbDisplay: graphics layer, device, files.
class StbDisplay : public QObject
{
    Q_OBJECT

public:
    /// The one object of the process, made by the first call.
    static StbDisplay *instance();
    static void destroyInstance();

signals:
    void ExitToMenuSignal();
    void keyDelayChanged(int);

private:
    static StbDisplay *inst_;
};

} // namespace KavroJS
