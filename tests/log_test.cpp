// SPDX-License-Identifier: Apache-2.0

#include "ostra_adapter_log.h"

#include <gtest/gtest.h>

#include "support/allocation_fault.h"
#include "support/log_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

TEST(Log, PassesEachLevelOn)
{
    LogRecorder log;
    for (int level = -1; level <= 4; ++level) {
        const LogLevel expected = level == DH_LOG_DEBUG   ? LOG_DEBUG
                                  : level == DH_LOG_WARN  ? LOG_WARN
                                  : level == DH_LOG_ERROR ? LOG_ERROR
                                                          : LOG_INFO;
        DHLog(static_cast<DHLogLevel>(level), "port %d of %s", 80, "sink");
        EXPECT_EQ(log.Take(), Loggable({{LOG_CORE, expected, 0xD004160, "OSTRA_ADAPTER", "port 80 of sink"}})) << level;
    }
}

TEST(Log, ReplacesWhatIsTooLongAsAWhole)
{
    LogRecorder log;
    const char *const noFormat = nullptr;
    DHLog(DH_LOG_DEBUG, noFormat);
    EXPECT_EQ(log.Take(), Loggable({{LOG_CORE, LOG_DEBUG, 0xD004160, "OSTRA_ADAPTER", "DH log length error."}}));
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

    template <typename Port>
    void Open(Port port)
    {
        OSTRA_LOGE("100%% of port %d, %s", port, "%s");
        OSTRA_LOGD("open");
    }
};

TEST(Log, NamesTheCallingFunctionAndAllocatesNothing)
{
    const auto act = [] {
        Device device;
        device.Open(5);
    };
    const uint64_t before = AllocationCount();
    act();
    EXPECT_EQ(AllocationCount(), before);
    LogRecorder log;
    act();
    EXPECT_EQ(log.Take(),
              Loggable({InfoLine("Device", "create "), ErrorLine("Open", "100% of port 5, %s"),
                        LibraryLine(LOG_DEBUG, "Open", "open"), LibraryLine(LOG_WARN, "~Device", "delete")}));
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
