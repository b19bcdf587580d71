// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The KVR_ functions of recordings.

#include "ApiCall.h"
#include "Box.h"

using namespace Desk;

namespace {

KVR_Record entryOf(const Record &record)
{
    KVR_Record entry = {};
    entry.id = record.id;
    record.url.copy(entry.addr, sizeof entry.addr - 1);
    entry.duration = record.duration;
    record.file.copy(entry.file, sizeof entry.file - 1);
    entry.start = record.start;
    entry.state = record.state;
    return entry;
}

} // namespace

KVR_ID KVR_AddRecord(const char *url, const char *file, uint32_t start, int duration)
{
    if (!url || !*url || !file || duration <= 0)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] {
        Record record;
        record.url = url;
        record.file = file;
        record.start = start;
        record.duration = duration;
        return box().records.book().add(record);
    });
}

int KVR_GetRecordsList(KVR_Record **records, int *count)
{
    if (!records || !count)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] {
        std::vector<KVR_Record> entries;
        for (const Record &record : box().records.book().all())
            entries.push_back(entryOf(record));
        return newArray(entries, records, count);
    });
}

int KVR_GetRecordStatus(KVR_ID id)
{
    return apiCall(__func__, [=]() -> int {
        const auto record = box().records.book().find(id);
        return record ? static_cast<int>(record->state) : KVR_ERR_INVALID_ID;
    });
}

int KVR_SetRecordStartTime(KVR_ID id, uint32_t start)
{
    return apiCall(__func__, [=] { return box().records.book().setStart(id, start); });
}

int KVR_SetRecordDuration(KVR_ID id, int duration)
{
    if (duration <= 0)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return box().records.book().setDuration(id, duration); });
}

int KVR_SetRecordFilename(KVR_ID id, const char *file)
{
    if (!file)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return box().records.book().setFile(id, file); });
}

int KVR_SetRecordUrl(KVR_ID id, const char *url)
{
    if (!url || !*url)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return box().records.book().setUrl(id, url); });
}

const char *KVR_GetRecordFilename(KVR_ID id)
{
    static thread_local std::string name;
    name.clear();
    apiCall(__func__, [=] {
        if (const auto record = box().records.book().find(id))
            name = record->file;
        return KVR_OK;
    });
    return name.c_str();
}

int KVR_CleanUpRecords(void)
{
    return apiCall(__func__, [] { return box().records.cleanUp(); });
}

int KVR_DeleteRecord(KVR_ID id)
{
    return apiCall(__func__, [=] { return box().records.book().remove(id); });
}

int KVR_SetRecordsSharedCallback(KVR_EventHandler handler)
{
    return apiCall(__func__, [=] {
        const int result = box().events.add(KVR_BOX, KVR_EVENT_RECORDS, handler);
        box().records.start();
        return result;
    });
}

int KVR_CleanRecordsSharedCallback(void)
{
    return apiCall(__func__, [] { return box().events.remove(KVR_BOX, KVR_EVENT_RECORDS); });
}
