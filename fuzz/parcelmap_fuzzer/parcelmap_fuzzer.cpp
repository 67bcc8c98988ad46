// SPDX-License-Identifier: Apache-2.0
//
// Reads the input as a parcel into a map that already has entries. Also writes a map to a parcel and reads it back.

#include <cstring>
#include <map>
#include <regex>

#include "fuzz_target.h"
#include "ipc_utils.h"
#include "message_parcel.h"

namespace {

using namespace Fuzz;
using OHOS::MessageParcel;
using OHOS::DistributedHardware::OstraAdapter::IpcUtils;

constexpr size_t MAX_ENTRIES = 10000;
constexpr size_t MAX_KEY_LENGTH = 100;
constexpr size_t UNIT = 4;

using Map = std::map<int32_t, std::string>;

bool IsKey(const std::string &string)
{
    static const std::regex number("[-+]?[0-9]+");
    const long long key = std::strtoll(string.c_str(), nullptr, 10);
    return string.size() <= MAX_KEY_LENGTH && std::regex_match(string, number) && key >= INT32_MIN && key <= INT32_MAX;
}

// Returns the next 4 bytes as a number, or 0 if fewer are left.
size_t TakeUnit(std::string &bytes)
{
    uint32_t number = 0;
    if (bytes.size() >= UNIT) {
        std::memcpy(&number, Take(bytes, UNIT).data(), UNIT);
    }
    return number;
}

// Reads a map from the front of the bytes of a parcel.
bool Read(std::string &bytes, Map &params)
{
    const size_t count = TakeUnit(bytes);
    for (size_t i = 0; count <= MAX_ENTRIES && i < count; ++i) {
        const size_t length = bytes.size() < UNIT ? UNIT : TakeUnit(bytes);
        if (length >= bytes.size() || bytes[length] != '\0') {
            return false;
        }
        const std::string entry = Take(bytes, (length / UNIT + 1) * UNIT).substr(0, length);
        const std::string key = entry.substr(0, entry.find('#'));
        if (key.size() < length && IsKey(key)) {
            params[std::stoi(key)] = entry.substr(key.size() + 1);
        }
    }
    return count <= MAX_ENTRIES;
}

// Reads the parcel into a map with the expected entries: the library must keep or replace the same ones.
Map CheckUnMarshalling(std::string bytes, Map expected)
{
    auto *block = static_cast<char *>(std::malloc(bytes.size() + 1));  // the parcel frees it
    bytes.copy(block, bytes.size());
    MessageParcel parcel;
    parcel.ParseFrom(reinterpret_cast<uintptr_t>(block), bytes.size());
    Map params = expected;
    const bool isComplete = Read(bytes, expected);
    ExpectEqual("result of UnMarshalling", isComplete, IpcUtils::UnMarshalling(parcel, params));
    ExpectEqual("map equals the reference", true, params == expected);
    ExpectEqual("readable bytes", isComplete ? bytes.size() : parcel.GetReadableBytes(), parcel.GetReadableBytes());
    return params;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string input = Begin(data, size);
    CheckUnMarshalling(input, {{INT32_MIN, "kept"}, {-1, "kept"}, {7, "kept"}, {INT32_MAX, "kept"}});
    Map params;
    while (!input.empty()) {
        const int32_t key = TakeNumber(input);
        params[key] = TakeString(input);
    }
    MessageParcel parcel;
    ExpectEqual("result of Marshalling", true, IpcUtils::Marshalling(parcel, params));
    const auto *written = reinterpret_cast<const char *>(parcel.GetData());  // NOLINT(performance-no-int-to-ptr)
    const std::string bytes(written, parcel.GetDataSize());
    ExpectEqual("map equals itself after a round trip", true, params == CheckUnMarshalling(bytes, {}));
    return 0;
}
