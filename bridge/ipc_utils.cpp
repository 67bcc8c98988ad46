// SPDX-License-Identifier: Apache-2.0

#include "ipc_utils.h"

#include <charconv>
#include <iterator>
#include <optional>

#include "dh_utils_tools.h"
#include "message_parcel.h"
#include "ostra_adapter_log.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// Not SEPARATOR: the process destroys that before its last calls.
constexpr char KEY_END = '#';
constexpr uint32_t MAX_ENTRIES = 10000;
constexpr size_t MAX_INT32_LENGTH = 11;

bool WriteEntries(MessageParcel &parcel, const std::map<int32_t, std::string> &params)
{
    if (!parcel.WriteUint32(static_cast<uint32_t>(params.size()))) {
        return false;
    }
    char start[MAX_INT32_LENGTH + 1];  // key and separator
    std::string entry;                 // reused, so that it allocates at most a few times
    for (const auto &[key, value] : params) {
        char *end = std::to_chars(std::begin(start), std::end(start) - 1, key).ptr;
        *end++ = KEY_END;
        entry.assign(start, end).append(value);
        if (!parcel.WriteString(entry)) {
            return false;
        }
    }
    return true;
}

// The value of a text that CheckIsNum accepts; none when it does not fit.
std::optional<int32_t> ToInt32(const std::string &text)
{
    const char *begin = text.data() + (text.front() == '+' ? 1 : 0);
    int32_t value = 0;
    const std::from_chars_result result = std::from_chars(begin, text.data() + text.size(), value);
    return result.ec == std::errc() ? std::optional<int32_t>(value) : std::nullopt;
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
        params.insert_or_assign(params.end(), *key, entry.substr(valueBegin));  // peers write ascending keys
    }
    return true;
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
