// SPDX-License-Identifier: Apache-2.0
//
// System parameters: replays the handwritten cases. host_environment_test.sh tests how parameters are initialized.

#include "parameter.h"

#include <gtest/gtest.h>

#include "host/recording.h"

using namespace replay;
using Argument = std::optional<std::string>;

TEST(Parameter, MatchesHandwrittenCases)
{
    const Operation set =
        Call(+[](const Argument &name, const Argument &value) { return SetParameter(Pointer(name), Pointer(value)); });
    const Operation get = Call(+[](const Argument &name, const Argument &fallback, uint32_t size) -> Fields {
        char value[128] = "unchanged";
        const int length = GetParameter(Pointer(name), Pointer(fallback), value, size);
        return {Show(length), Quote(value)};
    });
    Replay("handwritten/parameter.txt", 24, {{"set", set}, {"get", get}});
    EXPECT_EQ(GetParameter("a", "", nullptr, 1), -9);
}
