// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

namespace KavroJS {

/// The script object StbPVR: recordings.
class StbPVR : public QObject
{
    Q_OBJECT

public:
    /// The one object of the process, made by the first call.
    static StbPVR *instance();
    static void destroyInstance();


private:
    static StbPVR *_inst;
};

} // namespace KavroJS
