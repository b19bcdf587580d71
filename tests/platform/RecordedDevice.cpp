// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "StbApiExport.h"

#include "Results.h"

int KVR_GetDeviceModel(char **text)
{
    return recordedText(text, "MZ-600 test", "KVR_GetDeviceModel");
}

int KVR_GetFirmwareVersion(char **text)
{
    return recordedText(text, "", "KVR_GetFirmwareVersion");
}

int KVR_GetDeviceSerialNumber(char **text)
{
    return recordedText(text, "", "KVR_GetDeviceSerialNumber");
}

int KVR_GetBootParamValue(const char *key, char *buffer)
{
    const char *function = "KVR_GetBootParamValue";
    const auto unscripted = RecordingPlatform::Answer::buffer(QByteArray(1, '\0'));
    return Results::toBytes(function, recordedOr(unscripted, function, key), buffer, Results::bufferSize);
}

int KVR_SetBootParamValue(const char *key, const char *value)
{
    return recordedInt("KVR_SetBootParamValue", key, value);
}

int KVR_SyncBootParams()
{
    return recordedInt("KVR_SyncBootParams");
}

int KVR_UpgradeFirmware(const char *url)
{
    return recordedInt("KVR_UpgradeFirmware", url);
}
