// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>
#include <unistd.h>

#include <regex>
#include <set>
#include <string>

#include "softbus_bus_center.h"

TEST(HostSoftBus, DescribesTheLocalNode)
{
    NodeBasicInfo first{};
    NodeBasicInfo second{};
    EXPECT_EQ(GetLocalNodeDeviceInfo("package", &first) + GetLocalNodeDeviceInfo("another", &second), 0);
    EXPECT_TRUE(std::regex_match(first.networkId, std::regex("[0-9a-f]{64}"))) << first.networkId;
    EXPECT_STREQ(first.networkId, second.networkId);
    EXPECT_GT(std::set<char>(first.networkId, first.networkId + 64).size(), 4U);
    char host[DEVICE_NAME_BUF_LEN] = {0};
    gethostname(host, sizeof(host) - 1);
    EXPECT_STREQ(first.deviceName, host);
    EXPECT_LT(GetLocalNodeDeviceInfo(nullptr, &first), 0);
    EXPECT_LT(GetLocalNodeDeviceInfo("package", nullptr), 0);
}
