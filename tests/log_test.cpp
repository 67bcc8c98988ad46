// SPDX-License-Identifier: Apache-2.0

#include "ostra_adapter_log.h"

#include <gtest/gtest.h>

#include <utility>

#include "support/allocation_fault.h"
#include "support/log_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

TEST(Log, PassesEachLevelOn)
{
    LogRecorder log;
    for (auto [level, expected] : {std::pair{DH_LOG_DEBUG, LOG_DEBUG},
                                   {DH_LOG_INFO, LOG_INFO},
                                   {DH_LOG_WARN, LOG_WARN},
                                   {DH_LOG_ERROR, LOG_ERROR},
                                   {static_cast<DHLogLevel>(4), LOG_INFO},
                                   {static_cast<DHLogLevel>(-1), LOG_INFO}}) {
        DHLog(level, "port %d of %s", 80, "sink");
        EXPECT_EQ(log.Take(), (LogLines{{LOG_CORE, expected, 0xD004160, "OSTRA_ADAPTER", "port 80 of sink"}})) << level;
    }
}

TEST(Log, ReplacesWhatIsTooLongAsAWhole)
{
    LogRecorder log;
    const char *const noFormat = nullptr;
    DHLog(DH_LOG_DEBUG, noFormat);
    EXPECT_EQ(log.Take(), (LogLines{{LOG_CORE, LOG_DEBUG, 0xD004160, "OSTRA_ADAPTER", "DH log length error."}}));
    for (size_t length : {4095U, 4096U, 9000U}) {
        const std::string text(length, 'x');
        DHLog(DH_LOG_WARN, "%s", text.c_str());
        const std::string expected = length <= 4095 ? text : "DH log length error.";
        EXPECT_EQ(log.Take(), (LogLines{{LOG_CORE, LOG_WARN, 0xD004160, "OSTRA_ADAPTER", expected}}));
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

TEST(Log, NamesTheCallingFunctionAndAllocatesNothing)
{
    const auto act = [] {
        Device device;
        device.Open(5);
        Device::Print(6);
    };
    const uint64_t before = AllocationCount();
    act();
    EXPECT_EQ(AllocationCount(), before);
    LogRecorder log;
    act();
    EXPECT_EQ(log.Take(),
              (LogLines{InfoLine("Device", "create "), ErrorLine("Open", "100% of port 5, %s"),
                        LibraryLine(LOG_DEBUG, "Print", "value 6"), LibraryLine(LOG_WARN, "~Device", "delete")}));
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
