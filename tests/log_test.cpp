// SPDX-License-Identifier: Apache-2.0

#include "ostra_adapter_log.h"

#include "support/session.h"

const char *const SESSIONS =
#include "sessions/log_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using Log = Session;

TEST_F(Log, PassesEachLevelOn)
{
    CALL(DHLog(DH_LOG_DEBUG, "port %d of %s", 80, "sink"));
    CALL(DHLog(DH_LOG_INFO, "port %d of %s", 81, "sink"));
    CALL(DHLog(DH_LOG_WARN, "port %d of %s", 82, "sink"));
    CALL(DHLog(DH_LOG_ERROR, "port %d of %s", 83, "sink"));
    CALL(DHLog(static_cast<DHLogLevel>(7), "port %d of %s", 84, "sink"));
    CALL(DHLog(static_cast<DHLogLevel>(-1), "port %d of %s", 85, "%{private}s"));
}

TEST_F(Log, ReplacesWhatIsTooLongAsAWhole)
{
    const char *const noFormat = nullptr;
    CALL(DHLog(DH_LOG_ERROR, noFormat));
    CALL(DHLog(DH_LOG_WARN, "%s", std::string(4095, 'x').c_str()));
    CALL(DHLog(DH_LOG_WARN, "%s", std::string(4096, 'x').c_str()));
    CALL(DHLog(DH_LOG_INFO, "%s", std::string(9000, 'x').c_str()));
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

TEST_F(Log, NamesTheCallingFunction)
{
    CALL(Device().Open(5));
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
