// SPDX-License-Identifier: Apache-2.0

#include <benchmark/benchmark.h>

#include <cctype>
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

void LogWithOutputOff(benchmark::State &state)
{
    for (auto _ : state) {
        DHLog(DH_LOG_INFO, "[ostraadapterutils][Bench]:device %s port %d", "0123******cdef", 8080);
    }
}
BENCHMARK(LogWithOutputOff);

__attribute__((noinline)) int Print(char *buffer, size_t size, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

void PrintAndHandOn(benchmark::State &state)
{
    for (auto _ : state) {
        char buffer[4096];
        Print(buffer, sizeof(buffer), "[ostraadapterutils][Bench]:device %s port %d", "0123******cdef", 8080);
        HiLogPrint(LOG_CORE, LOG_INFO, 0xD004160, "OSTRA_ADAPTER", "%{public}s", buffer);
    }
}
BENCHMARK(PrintAndHandOn);

const int LOG_ROW = AddRow({"`DHLog`", "LogWithOutputOff", "`vsprintf_s`, `HiLogPrint`", "PrintAndHandOn", 1.1});

void CheckIsNumTenDigits(benchmark::State &state)
{
    std::string text = "1234567890";
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.data());
        benchmark::DoNotOptimize(CheckIsNum(text));
    }
}
BENCHMARK(CheckIsNumTenDigits);

void FromCharsTenDigits(benchmark::State &state)
{
    std::string text = "1234567890";
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.data());
        int64_t value = 0;
        benchmark::DoNotOptimize(std::from_chars(text.data(), text.data() + text.size(), value));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(FromCharsTenDigits);

const int NUMBER_ROW = AddRow(
    {"`CheckIsNum`, 10 digits", "CheckIsNumTenDigits", "`std::from_chars` on the same text", "FromCharsTenDigits", 2});

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
