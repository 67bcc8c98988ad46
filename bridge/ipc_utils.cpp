// SPDX-License-Identifier: Apache-2.0

#include "ipc_utils.h"

#include <charconv>
#include <cstdlib>
#include <iterator>
#include <optional>

#include "dh_utils_tools.h"
#include "message_parcel.h"
#include "ostra_adapter_log.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// A copy of SEPARATOR, which may be destroyed before the last call to IpcUtils.
constexpr char KEY_END = '#';
constexpr uint32_t MAX_ENTRIES = 10000;
constexpr size_t MAX_INT32_LENGTH = 11;

bool WriteEntries(MessageParcel &parcel, const std::map<int32_t, std::string> &params)
{
    if (!parcel.WriteUint32(static_cast<uint32_t>(params.size()))) {
        return false;
    }
    char prefix[MAX_INT32_LENGTH + 1];  // key and separator
    std::string entry;                  // reused for all entries, to save allocations
    for (const auto &[key, value] : params) {
        char *end = std::to_chars(std::begin(prefix), std::end(prefix) - 1, key).ptr;
        *end++ = KEY_END;
        entry.assign(prefix, end).append(value);
        if (!parcel.WriteString(entry)) {
            return false;
        }
    }
    return true;
}

// Converts a string that CheckIsNum accepts; returns nullopt if the number is out of range. Does not use
// std::from_chars: its inline code may rely on unsigned overflow (for "-0"), which aborts the process on a device.
std::optional<int32_t> ToInt32(const std::string &number)
{
    const long long value = std::strtoll(number.c_str(), nullptr, 10);  // saturates far outside the range
    if (value < INT32_MIN || value > INT32_MAX) {
        return std::nullopt;
    }
    return static_cast<int32_t>(value);
}

}  // namespace

bool IpcUtils::Marshalling(MessageParcel &parcel, const std::map<int32_t, std::string> &params)
{
    if (params.size() > MAX_ENTRIES) {
        OSTRA_LOGE("Params size is invalid!size : %zu", params.size());
        return false;
    }
    if (!WriteEntries(parcel, params)) {
        OSTRA_LOGE("write value failed!");
        return false;
    }
    return true;
}

bool IpcUtils::UnMarshalling(MessageParcel &parcel, std::map<int32_t, std::string> &params)
{
    const uint32_t count = parcel.ReadUint32();
    if (count > MAX_ENTRIES) {
        OSTRA_LOGE("Params size is invalid!size : %u", count);
        return false;
    }
    std::string entry;
    std::string keyString;
    for (uint32_t i = 0; i < count; ++i) {
        if (!parcel.ReadString(entry)) {
            OSTRA_LOGE("read value failed!");
            return false;
        }
        const size_t keyLength = entry.find(KEY_END);
        if (keyLength == std::string::npos) {
            OSTRA_LOGE("Not found the separator!");
            continue;
        }
        keyString.assign(entry, 0, keyLength);
        if (!CheckIsNum(keyString)) {
            OSTRA_LOGE("key_str is not Num");
            continue;
        }
        const std::optional<int32_t> key = ToInt32(keyString);
        if (!key) {
            OSTRA_LOGE("key_str is out of range");
            continue;
        }
        const size_t valueBegin = keyLength + 1;
        OSTRA_LOGI("the key is %d, value is %s", *key, entry.c_str() + valueBegin);
        params.insert_or_assign(params.end(), *key, entry.substr(valueBegin));  // hint: peers send ascending keys
    }
    return true;
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
