// SPDX-License-Identifier: Apache-2.0
//
// System parameters: limits and arguments. host_environment_test.sh tests how they are filled.

#include "parameter.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Returns the parameter's value, or "error N".
std::string Get(const std::string &name, const char *fallback = "unset", uint32_t size = 128)
{
    char value[128] = "unchanged";
    const int length = GetParameter(name.c_str(), fallback, value, size);
    if (length < 0) {
        EXPECT_STREQ(value, "unchanged");
        return "error " + std::to_string(length);
    }
    return {value, static_cast<size_t>(length)};
}

int Set(const std::string &name, const std::string &value)
{
    return SetParameter(name.c_str(), value.c_str());
}

}  // namespace

TEST(Parameter, ChecksNamesValuesAndBuffers)
{
    const std::string longest(96, 'v');
    EXPECT_EQ(Set("persist.Test_0.9z", longest), 0);
    EXPECT_EQ(Set(longest, "value"), 0);
    EXPECT_EQ(Set("persist.Test_0.9z", longest + 'v'), -9);
    EXPECT_EQ(Get("persist.Test_0.9z", nullptr, 97), longest);
    EXPECT_EQ(Get("persist.Test_0.9z", "", 96), "error -9");
    for (const std::string &name :
         {std::string(), longest + 'v', std::string("a-b"), std::string("a:b"), std::string("a[b"), std::string("a{b"),
          std::string("a/b"), std::string("a@b"), std::string("a`b")}) {
        EXPECT_EQ(Set(name, "value"), -9) << name;
        EXPECT_EQ(Get(name), "error -1") << name;
    }
    EXPECT_EQ(SetParameter(nullptr, "v"), -9);
    EXPECT_EQ(SetParameter("test.null", nullptr), -9);
    EXPECT_EQ(GetParameter("a", "", nullptr, 1), -9);
    EXPECT_EQ(Get("test.unset", nullptr), "error -1");
    EXPECT_EQ(Get("test.unset", "other", 5), "error -9");
    EXPECT_EQ(Get("test.unset", "other", 6), "other");
}
