// SPDX-License-Identifier: Apache-2.0

#include "ostra_adapter_log.h"

#include <gtest/gtest.h>

#include <climits>
#include <set>
#include <thread>

#include "support/allocation_fault.h"
#include "support/log_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

TEST(Log, PassesEachLevelOn)
{
    const struct {
        int32_t level;
        LogLevel expected;
    } table[] = {{DH_LOG_DEBUG, LOG_DEBUG},
                 {DH_LOG_INFO, LOG_INFO},
                 {DH_LOG_WARN, LOG_WARN},
                 {DH_LOG_ERROR, LOG_ERROR},
                 {4, LOG_INFO},
                 {7, LOG_INFO},
                 {-1, LOG_INFO},
                 {INT_MAX, LOG_INFO},
                 {INT_MIN, LOG_INFO}};
    LogRecorder log;
    for (const auto &row : table) {
        DHLog(static_cast<DHLogLevel>(row.level), "port %d of %s", 80, "sink");
        EXPECT_EQ(log.Take(), (LogLines{{LOG_CORE, row.expected, 0xD004160, "OSTRA_ADAPTER", "port 80 of sink"}}))
            << row.level;
    }
}

TEST(Log, ReplacesWhatIsTooLongAsAWhole)
{
    LogRecorder log;
    const char *const noFormat = nullptr;
    DHLog(DH_LOG_DEBUG, noFormat);
    EXPECT_EQ(log.Take(), (LogLines{{LOG_CORE, LOG_DEBUG, 0xD004160, "OSTRA_ADAPTER", "DH log length error."}}));
    for (size_t length = 4090; length <= 4100; ++length) {
        const std::string text(length, 'x');
        DHLog(DH_LOG_WARN, "%s", text.c_str());
        const LogLines lines = log.Take();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_EQ(lines[0].text, length <= 4095 ? text : "DH log length error.") << length;
        EXPECT_EQ(lines[0].level, LOG_WARN);
    }
}

class Device {
public:
    Device()
    {
        OSTRA_LOGI("create ");
    }

    ~Device()
    {
        OSTRA_LOGW("delete");
    }

    void Open(int port)
    {
        OSTRA_LOGE("100%% of port %d, %s", port, "%s");
    }

    template <typename Value>
    static void Print(Value value)
    {
        OSTRA_LOGD("value %lld", static_cast<long long>(value));
    }
};

TEST(Log, NamesTheCallingFunction)
{
    LogRecorder log;
    {
        Device device;
        device.Open(5);
        Device::Print(6);
    }
    EXPECT_EQ(log.Take(),
              (LogLines{InfoLine("Device", "create "), ErrorLine("Open", "100% of port 5, %s"),
                        LibraryLine(LOG_DEBUG, "Print", "value 6"), LibraryLine(LOG_WARN, "~Device", "delete")}));
}

TEST(Log, AllocatesNothing)
{
    const uint64_t before = AllocationCount();
    for (int i = 0; i < 10; ++i) {
        OSTRA_LOGE("a message of some length that no small buffer holds, number %d, %s", i, "with a text");
    }
    EXPECT_EQ(AllocationCount(), before);
}

TEST(Log, MayBeCalledFromManyThreads)
{
    LogRecorder log;
    const auto logMany = [] {
        for (int i = 0; i < 100; ++i) {
            DHLog(DH_LOG_INFO, "%d %s", i, std::string(500, 'y').c_str());
        }
    };
    std::thread other(logMany);
    logMany();
    other.join();
    const LogLines lines = log.Take();
    EXPECT_EQ(lines.size(), 200U);
    EXPECT_EQ(std::set<size_t>({502, 503}), [&lines] {
        std::set<size_t> lengths;
        for (const LogLine &line : lines) {
            lengths.insert(line.text.size());
        }
        return lengths;
    }());
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
