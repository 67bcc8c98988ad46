// SPDX-License-Identifier: Apache-2.0

#include "ostra_constants.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "support/fault.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

TEST(OstraConstantsTest, AreReleasedWhenAPluginIsUnloaded)
{
    const auto loadAndUnload = [] {
        void *const plugin = dlopen(CONSTANTS_PLUGIN, RTLD_NOW);
        ASSERT_NE(plugin, nullptr) << dlerror();
        const auto permission = reinterpret_cast<const char16_t *(*)()>(dlsym(plugin, "Permission"));
        EXPECT_EQ(permission(), DH_ACCESS_TOKEN_PERMISSION);
        EXPECT_NE(permission(), DH_ACCESS_TOKEN_PERMISSION.c_str());
        EXPECT_EQ(dlclose(plugin), 0);
        EXPECT_EQ(dlopen(CONSTANTS_PLUGIN, RTLD_NOW | RTLD_NOLOAD), nullptr) << "is still loaded";
    };
    loadAndUnload();
    const int64_t liveBlocks = LiveBlocks();
    loadAndUnload();
    EXPECT_EQ(LiveBlocks(), liveBlocks);
}
