// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The KVR_ functions of the device: identity, boot parameters, firmware.

#include "ApiCall.h"
#include "Box.h"

using namespace Desk;

namespace {

int handOut(const std::string &value, char **text)
{
    char *const copy = value.empty() ? nullptr : newText(value);
    if (!copy)
        return KVR_ERR_FAILED;
    *text = copy;
    return KVR_OK;
}

} // namespace

int KVR_GetDeviceModel(char **text)
{
    if (!text)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return handOut(box().identity.model(), text); });
}

int KVR_GetFirmwareVersion(char **text)
{
    if (!text)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return handOut(BoxIdentity::firmwareVersion(), text); });
}

int KVR_GetDeviceSerialNumber(char **text)
{
    if (!text)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return handOut(box().identity.serialNumber(), text); });
}

int KVR_GetBootParamValue(const char *key, char *buffer)
{
    if (!key || !buffer)
        return KVR_ERR_INVALID_ARGUMENT;
    *buffer = '\0';
    return apiCall(__func__, [=]() -> int {
        const auto value = box().bootParameters.value(key);
        if (!value)
            return KVR_ERR_FAILED;
        const std::size_t size = value->copy(buffer, BootParameterStore::maximumValueSize);
        buffer[size] = '\0';
        return KVR_OK;
    });
}

int KVR_SetBootParamValue(const char *key, const char *value)
{
    if (!key || !value)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return box().bootParameters.setValue(key, value); });
}

int KVR_SyncBootParams(void)
{
    return apiCall(__func__, [] { return box().bootParameters.sync(); });
}

int KVR_UpgradeFirmware(const char *url)
{
    if (!url)
        return KVR_ERR_INVALID_ARGUMENT;
    return apiCall(__func__, [=] { return box().firmware.upgrade(url); });
}
