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
    for (size_t length = 4090; length <= 4100; ++length) {
        const std::string text(length, 'x');
        DHLog(DH_LOG_WARN, "%s", text.c_str());
        const LogLines lines = log.Take();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_EQ(lines[0].text, length <= 4095 ? text : "DH log length error.") << length;
        EXPECT_EQ(lines[0].level, LOG_WARN);
    }
}

TEST(Log, TakesTheComposedTextAsTheFormat)
{
    LogRecorder log;
    OSTRA_LOGI("100%% of %s", "%s");
    EXPECT_EQ(log.Take(), (LogLines{InfoLine("TestBody", "100% of %s")}));
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
        OSTRA_LOGE("port %d", port);
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
              (LogLines{InfoLine("Device", "create "), ErrorLine("Open", "port 5"),
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

TEST(Log, KeepsMessagesOfManyThreadsApart)
{
    constexpr int threadCount = 4;
    constexpr int messageCount = 200;
    LogRecorder log;
    std::vector<std::thread> threads;
    std::multiset<std::string> expected;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([i] {
            for (int j = 0; j < messageCount; ++j) {
                DHLog(DH_LOG_INFO, "thread %d message %d %s", i, j, std::string(500, 'y').c_str());
            }
        });
        for (int j = 0; j < messageCount; ++j) {
            expected.insert("thread " + std::to_string(i) + " message " + std::to_string(j) + " " +
                            std::string(500, 'y'));
        }
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    std::multiset<std::string> seen;
    for (const LogLine &line : log.Take()) {
        seen.insert(line.text);
    }
    EXPECT_EQ(seen, expected);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
