// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/stbapi.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QVariant>

namespace KavroJS {

/// The script object StbPVR: scheduled recordings. The order of the slots is part of what portals and the launcher see.
class StbPVR : public QObject
{
    Q_OBJECT

public:
    /// The one object of the process, made by the first call.
    static StbPVR *instance();
    static void destroyInstance();

    ~StbPVR() override;

public slots:
    int AddRecord(QString url, QString fn, QDateTime starttime, int duration);
    QVariant GetRecordsList();
    QVariant GetRecordStatus(KVR_ID id);
    int SetRecordStartTime(KVR_ID, QVariant);
    int SetRecordDuration(KVR_ID, int);
    int SetRecordFilename(KVR_ID, QString);
    int SetRecordUrl(KVR_ID id, QString url);
    QString GetRecordFilename(KVR_ID);
    void CleanUpRecords();
    int DeleteRecord(KVR_ID id);

private:
    StbPVR();

    static StbPVR *_inst;
};

/// Called by the platform, on a thread of its own, when a recording has changed.
int pvr_clbk(int value);

} // namespace KavroJS
