// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

extern "C" const char *CallFromC(void);

TEST(CInterface, WorksFromC)
{
    EXPECT_STREQ(CallFromC(), nullptr);
}
