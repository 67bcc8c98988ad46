// SPDX-License-Identifier: Apache-2.0

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>

namespace {

void LoadAndClose()
{
    void *const library = dlopen(OSTRA_LIBRARY, RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    dlclose(library);
}

// What the library never destroys must not be made anew by each load.
TEST(Reload, KeepsTheLibraryAndGrowsByNothing)
{
    LoadAndClose();
    EXPECT_NE(dlopen(OSTRA_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr);
    const size_t inUse = mallinfo2().uordblks;
    for (int i = 0; i < 10; ++i) {
        LoadAndClose();
    }
    EXPECT_EQ(mallinfo2().uordblks, inUse);
}

}  // namespace
