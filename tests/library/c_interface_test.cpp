// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

extern "C" int CallFromC(void);

TEST(CInterface, WorksFromC)
{
    EXPECT_TRUE(CallFromC());
}
