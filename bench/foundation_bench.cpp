// SPDX-License-Identifier: Apache-2.0

#include <charconv>
#include <cstdarg>
#include <string>

#include "dh_utils_tools.h"
#include "hilog/log.h"
#include "ostra_adapter_log.h"
#include "ratio_table.h"
#include "securec.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

void LogMessage(benchmark::State &state)
{
    for (auto _ : state) {
        DHLog(DH_LOG_INFO, "[ostraadapterutils][Bench]:device %s port %d", "0123******cdef", 8080);
    }
}

__attribute__((noinline)) int Format(char *buffer, size_t size, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

void LogBaseline(benchmark::State &state)
{
    for (auto _ : state) {
        char buffer[4096];
        Format(buffer, sizeof(buffer), "[ostraadapterutils][Bench]:device %s port %d", "0123******cdef", 8080);
        HiLogPrint(LOG_CORE, LOG_INFO, 0xD004160, "OSTRA_ADAPTER", "%{public}s", buffer);
    }
}

const int LOG_ROW = AddRow("`DHLog`", LogMessage, "`vsprintf_s`, `HiLogPrint`", LogBaseline, SAME_WORK_LIMIT);

void CheckTenDigits(benchmark::State &state)
{
    std::string number = "1234567890";
    for (auto _ : state) {
        benchmark::DoNotOptimize(number.data());
        benchmark::DoNotOptimize(CheckIsNum(number));
    }
}

void CheckTenDigitsBaseline(benchmark::State &state)
{
    std::string number = "1234567890";
    for (auto _ : state) {
        benchmark::DoNotOptimize(number.data());
        int64_t value = 0;
        benchmark::DoNotOptimize(std::from_chars(number.data(), number.data() + number.size(), value));
        benchmark::DoNotOptimize(value);
    }
}

const int NUMBER_ROW = AddRow("`CheckIsNum`, 10 digits", CheckTenDigits, "`std::from_chars` on the same string",
                              CheckTenDigitsBaseline, 2);

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
