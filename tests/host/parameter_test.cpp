// SPDX-License-Identifier: Apache-2.0
//
// System parameters: replays the handwritten cases. host_environment_test.sh tests how parameters are initialized.

#include "parameter.h"

#include <gtest/gtest.h>

#include "host/recording.h"

using namespace replay;

TEST(Parameter, MatchesHandwrittenCases)
{
    const Operation get = Call(+[](const char *name, const char *fallback, uint32_t size) -> Fields {
        char value[128] = "unchanged";
        const int length = GetParameter(name, fallback, value, size);
        return {Show(length), Quote(value)};
    });
    Replay("handwritten/parameter.txt", 25, {{"set", Call(SetParameter)}, {"get", get}});
    EXPECT_EQ(GetParameter("a", "", nullptr, 1), -9);
}
