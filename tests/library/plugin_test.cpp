// SPDX-License-Identifier: Apache-2.0
//
// Loads a plugin that includes the library's headers again and again.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "support/fault.h"

TEST(Plugin, ReleasesSharedConstantsWhenUnloaded)
{
    const auto useOnce = [] {
        void *plugin = dlopen(PLUGIN, RTLD_NOW);
        ASSERT_NE(plugin, nullptr) << dlerror();
        const auto nameOf = reinterpret_cast<const char *(*)(int)>(dlsym(plugin, "NameOfType"));
        EXPECT_STREQ(nameOf(1), "Camera");
        EXPECT_EQ(dlclose(plugin), 0);
        EXPECT_EQ(dlopen(PLUGIN, RTLD_NOW | RTLD_NOLOAD), nullptr) << "is not unloaded";
    };
    useOnce();
    const int64_t liveBlocks = LiveBlocks();
    for (int i = 0; i < 1000; ++i) {
        useOnce();
    }
    EXPECT_EQ(LiveBlocks(), liveBlocks);
}
