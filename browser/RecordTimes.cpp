// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/RecordTimes.h"

#include "jsapi/StbPVR.h"

RecordTimes::RecordTimes(KavroJS::StbPVR *pvr, QObject *parent)
    : QObject(parent)
    , pvr(pvr)
{
}

QVariantList RecordTimes::GetRecordsList()
{
    const QString key = QLatin1String("start");
    QVariantList records;
    const QVariantList dated = pvr->GetRecordsList().toList();
    for (const QVariant &entry : dated) {
        QVariantMap record = entry.toMap();
        record[key] = static_cast<double>(record[key].toDateTime().toMSecsSinceEpoch());
        records.append(record);
    }
    return records;
}
