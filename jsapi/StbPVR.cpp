// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "jsapi/StbPVR.h"

#include "browser/bridge/EventNotifier.h"
#include "browser/bridge/JsApiTracer.h"
#include "common/other/qtcompat.h"
#include "jsapi/PlatformRecords.h"

#include <QDebug>

#include <cstdlib>

namespace {

QVariantMap recordMap(const KVR_Record &record)
{
    QVariantMap map;
    map[QLatin1String("id")] = record.id;
    map[QLatin1String("addr")] = PlatformRecords::fieldText(record.addr, sizeof record.addr);
    map[QLatin1String("duration")] = record.duration;
    map[QLatin1String("file")] = PlatformRecords::fieldText(record.file, sizeof record.file);
    map[QLatin1String("start")] = QDateTime::fromTime_t(record.start);
    map[QLatin1String("state")] = record.state;
    return map;
}

} // namespace

namespace KavroJS {

int pvr_clbk(int value)
{
    return EventNotifier::instance()->notifyEvent(value, KVR_EVENT_RECORDS);
}

StbPVR *StbPVR::_inst = nullptr;

StbPVR *StbPVR::instance()
{
    if (!_inst)
        _inst = new StbPVR;
    return _inst;
}

void StbPVR::destroyInstance()
{
    delete _inst;
    _inst = nullptr;
}

StbPVR::StbPVR()
{
    // The script engine looks parameter types up by name.
    QtCompat::registerIntAlias("KVR_ID");
    KVR_SetRecordsSharedCallback(pvr_clbk);
}

StbPVR::~StbPVR()
{
    KVR_CleanRecordsSharedCallback();
}

int StbPVR::AddRecord(QString url, QString fn, QDateTime starttime, int duration)
{
    trace("StbPVR.AddRecord(%1, %2, %3 ,%4)", url, fn, starttime.toTime_t(), duration);
    qDebug() << starttime;
    return KVR_AddRecord(url.toUtf8().constData(), fn.toUtf8().constData(), starttime.toTime_t(), duration);
}

QVariant StbPVR::GetRecordsList()
{
    trace("StbPVR.GetRecordsList()");
    KVR_Record *records = nullptr;
    int count = 0;
    KVR_GetRecordsList(&records, &count);
    QVariantList answer;
    for (int i = 0; records && i < count; ++i)
        answer.append(recordMap(records[i]));
    free(records);
    return answer;
}

QVariant StbPVR::GetRecordStatus(KVR_ID id)
{
    trace("StbPVR.GetRecordStatus(%1)", id);
    return KVR_GetRecordStatus(id);
}

// This setter and the next two trace the name of SetRecordUrl, which technicians know.

int StbPVR::SetRecordStartTime(KVR_ID id, QVariant starttime)
{
    const uint start = starttime.toDateTime().toTime_t();
    trace("StbPVR.SetRecordUrl(%1, %2)", id, start);
    return KVR_SetRecordStartTime(id, start);
}

int StbPVR::SetRecordDuration(KVR_ID id, int duration)
{
    trace("StbPVR.SetRecordUrl(%1, %2)", id, duration);
    return KVR_SetRecordDuration(id, duration);
}

int StbPVR::SetRecordFilename(KVR_ID id, QString name)
{
    trace("StbPVR.SetRecordUrl(%1, %2)", id, name);
    return KVR_SetRecordFilename(id, name.toUtf8().constData());
}

int StbPVR::SetRecordUrl(KVR_ID id, QString url)
{
    trace("StbPVR.SetRecordUrl(%1, %2)", id, url);
    return KVR_SetRecordUrl(id, url.toUtf8().constData());
}

QString StbPVR::GetRecordFilename(KVR_ID id)
{
    trace("StbPVR.GetRecordFilename(%1)", id);
    return QString::fromLatin1(KVR_GetRecordFilename(id));
}

void StbPVR::CleanUpRecords()
{
    trace("StbPVR.CleanUpRecords()");
    KVR_CleanUpRecords();
}

int StbPVR::DeleteRecord(KVR_ID id)
{
    trace("StbPVR.DeleteRecord(%1)", id);
    return KVR_DeleteRecord(id);
}

} // namespace KavroJS
