// SPDX-License-Identifier: Apache-2.0

#include "ostra_adapter_log.h"

#include "parameter.h"
#include "support/golden_test.h"

#include "ostra_adapter_log_test.txt"

using namespace OHOS::DistributedHardware::OstraAdapter;

using OstraAdapterLogTest = GoldenTest;

TEST_F(OstraAdapterLogTest, ForwardsLevels)
{
    EXPECT_EQ(SetParameter("hilog.loggable.tag.OSTRA_ADAPTER", "D"), 0);
    for (int level = -1; level <= 4; ++level) {
        CALL(DHLog(static_cast<DHLogLevel>(level), "level %d of %s", level, "%{private}s"));
    }
}

TEST_F(OstraAdapterLogTest, ReplacesOverlongMessages)
{
    const char *const noFormat = nullptr;
    CALL(DHLog(DH_LOG_ERROR, noFormat));
    CALL(DHLog(DH_LOG_WARN, "%s", ""));
    CALL(DHLog(DH_LOG_WARN, "%s", std::string(4095, 'x').c_str()));
    CALL(DHLog(DH_LOG_WARN, "%s", std::string(4096, 'x').c_str()));
}

void Open(int port)
{
    OSTRA_LOGW("open");
    OSTRA_LOGE("100%% of port %d, %s", port, "%s");
}

TEST_F(OstraAdapterLogTest, NamesTheCallingFunction)
{
    CALL(Open(5));
}
