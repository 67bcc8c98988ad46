// SPDX-License-Identifier: Apache-2.0

#include "dh_utils_tools.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>
#include <random>

#include "ostra_adapter_log.h"
#include "securec.h"
#include "softbus_bus_center.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// A copy of OSTRA_PKG_NAME, which may be destroyed before the last call to GetLocalDeviceNetworkId.
constexpr char PACKAGE_NAME[] = "ohos.dhardware.osatraadapter";
constexpr char MASK[] = "******";
constexpr size_t MIN_LENGTH_WITH_ENDS = 3;
constexpr size_t MIN_LENGTH_WITH_LONG_ENDS = 21;
constexpr size_t LONG_END_LENGTH = 4;
constexpr size_t INT32_BUFFER_SIZE = 40;
constexpr uint32_t INT32_BYTES = 4;
constexpr size_t MAX_NUMBER_LENGTH = 100;
constexpr int64_t US_PER_MS = 1000;

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

void AppendHex(std::string &output, uint64_t value, int width)
{
    constexpr char digits[] = "0123456789abcdef";
    constexpr int bitsPerDigit = 4;
    for (int shift = (width - 1) * bitsPerDigit; shift >= 0; shift -= bitsPerDigit) {
        output += digits[(value >> shift) & 0xF];
    }
}

}  // namespace

std::string GetRandomID()
{
    static auto &device = *new std::random_device("/dev/urandom");  // never destroyed
    const auto draw = [] {
        return uint64_t{device()} << 32 | device();
    };
    const uint64_t high = draw();
    const uint64_t low = draw();

    std::string id;
    AppendHex(id, high >> 32, 8);
    AppendHex(id, high >> 16, 4);
    AppendHex(id, (high & 0x0FFF) | 0x4000, 4);         // version 4
    AppendHex(id, ((low >> 48) & 0x3FFF) | 0x8000, 4);  // variant
    AppendHex(id, low >> 32, 4);
    AppendHex(id, low, 8);
    return id;
}

std::string GetAnonyString(const std::string &value)
{
    if (value.size() < MIN_LENGTH_WITH_ENDS) {
        return MASK;
    }
    const size_t end = value.size() < MIN_LENGTH_WITH_LONG_ENDS ? 1 : LONG_END_LENGTH;
    std::string masked(value, 0, end);
    masked += MASK;
    masked.append(value, value.size() - end, end);
    return masked;
}

std::string GetAnonyInt32(int32_t value)
{
    char buffer[INT32_BUFFER_SIZE] = {0};
    if (sprintf_s(buffer, sizeof(buffer), "%d", value) <= 0) {
        return "";
    }
    std::string masked(buffer);
    const size_t kept = masked.size() > 1 ? 1 : 0;
    std::fill(masked.begin() + static_cast<std::ptrdiff_t>(kept), masked.end(), '*');
    return masked;
}

int32_t GetLocalDeviceNetworkId(std::string &networkId)
{
    NodeBasicInfo info = {};
    const int32_t ret = GetLocalNodeDeviceInfo(PACKAGE_NAME, &info);
    if (ret != 0) {
        OSTRA_LOGE("GetLocalNodeDeviceInfo failed ret: %d", ret);
        return ret;
    }
    networkId.assign(info.networkId, strnlen(info.networkId, sizeof(info.networkId)));
    return 0;
}

int64_t GetNowTimeStampMs()
{
    return GetNowTimeStampUs() / US_PER_MS;
}

int64_t GetNowTimeStampUs()
{
    using std::chrono::microseconds;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<microseconds>(sinceEpoch).count();
}

void OSTRAIntToByte(uint32_t value, uint8_t *byteArray, uint32_t byteSize)
{
    if (byteArray == nullptr || byteSize != INT32_BYTES) {
        OSTRA_LOGE("byteArray is null or byteSize != %d.", static_cast<int>(INT32_BYTES));
        return;
    }
    byteArray[0] = static_cast<uint8_t>(value >> 24);
    byteArray[1] = static_cast<uint8_t>(value >> 16);
    byteArray[2] = static_cast<uint8_t>(value >> 8);
    byteArray[3] = static_cast<uint8_t>(value);
}

// Matches NUMBER_PATTERN without std::regex, whose construction takes about ten thousand times as long.
bool CheckIsNum(const std::string &value)
{
    if (value.empty() || value.size() > MAX_NUMBER_LENGTH) {
        OSTRA_LOGE("Value string size %zu is zero or too long.", value.size());
        return false;
    }
    const bool hasSign = value.front() == '-' || value.front() == '+';
    const auto digits = value.begin() + (hasSign ? 1 : 0);
    return digits != value.end() && std::all_of(digits, value.end(), IsDigit);
}

void SaveFile(std::string fileName, uint8_t *data, int32_t size)
{
    if (size < 0 || (data == nullptr && size > 0)) {
        OSTRA_LOGE("data is null or size is negative, size: %d", size);
        return;
    }
    std::ofstream file(fileName, std::ios::binary | std::ios::app);
    if (!file.is_open()) {
        OSTRA_LOGE("open file failed, fileName: %s", fileName.c_str());
        return;
    }
    if (size > 0) {
        file.write(reinterpret_cast<const char *>(data), size);
    }
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
