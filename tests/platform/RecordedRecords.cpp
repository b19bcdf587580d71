// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StbApiExport.h"

#include "Results.h"

KVR_ID KVR_AddRecord(const char *url, const char *file, uint32_t start, int duration)
{
    return recordedNewId("KVR_AddRecord", url, file, start, duration);
}

int KVR_GetRecordsList(KVR_Record **records, int *count)
{
    return recordedArray(records, count, "KVR_GetRecordsList");
}

int KVR_GetRecordStatus(KVR_ID id)
{
    return recordedInt("KVR_GetRecordStatus", id);
}

int KVR_SetRecordStartTime(KVR_ID id, uint32_t start)
{
    return recordedInt("KVR_SetRecordStartTime", id, start);
}

int KVR_SetRecordDuration(KVR_ID id, int duration)
{
    return recordedInt("KVR_SetRecordDuration", id, duration);
}

int KVR_SetRecordFilename(KVR_ID id, const char *file)
{
    return recordedInt("KVR_SetRecordFilename", id, file);
}

int KVR_SetRecordUrl(KVR_ID id, const char *url)
{
    return recordedInt("KVR_SetRecordUrl", id, url);
}

const char *KVR_GetRecordFilename(KVR_ID id)
{
    const char *function = "KVR_GetRecordFilename";
    return Results::toOwnText(function, recordedOr(RecordingPlatform::Answer::text(""), function, id));
}

int KVR_CleanUpRecords()
{
    return recordedInt("KVR_CleanUpRecords");
}

int KVR_DeleteRecord(KVR_ID id)
{
    return recordedInt("KVR_DeleteRecord", id);
}
