// SPDX-License-Identifier: Apache-2.0
//
// System parameters of the host platform. What is read from the environment once a process is tested in processes of
// its own.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>

#include "parameter.h"

using namespace std::string_literals;

namespace {

// The parameter's value, or "error N".
std::string Parameter(const std::string &name, const char *fallback = "unset")
{
    char value[128] = {0};
    const int length = GetParameter(name.c_str(), fallback, value, sizeof(value));
    return length < 0 ? "error " + std::to_string(length) : std::string(value, static_cast<size_t>(length));
}

}  // namespace

TEST(HostParameter, NamesAndValuesAreCheckedToTheirLimits)
{
    for (const std::string &name : {"ostra.test_0.9z"s, std::string(96, 'n')}) {
        for (const std::string &value : {""s, "V=;#"s, std::string(96, 'v')}) {
            EXPECT_EQ(SetParameter(name.c_str(), value.c_str()), 0) << name << "=" << value;
            EXPECT_EQ(Parameter(name, nullptr), value) << name;
        }
        EXPECT_EQ(SetParameter(name.c_str(), std::string(97, 'v').c_str()), -9);
        EXPECT_EQ(Parameter(name), std::string(96, 'v')) << "unchanged";
    }
    for (const std::string &name : {""s, std::string(97, 'n'), "a-b"s, "a b"s}) {
        EXPECT_EQ(SetParameter(name.c_str(), "value"), -9) << name;
        EXPECT_EQ(Parameter(name), "error -1") << name;
    }
    EXPECT_EQ(SetParameter(nullptr, "value"), -9);
    EXPECT_EQ(SetParameter("test.null", nullptr), -9);
    EXPECT_EQ(Parameter("test.null", nullptr), "error -1");
}

TEST(HostParameter, TheBufferHoldsTheTextAndItsZero)
{
    EXPECT_EQ(SetParameter("test.set", "12345"), 0);
    for (const std::string text : {"12345", "other"}) {
        const char *name = text == "other" ? "test.unset" : "test.set";
        for (uint32_t size = 0; size <= 7; ++size) {
            char buffer[] = "#######";
            const bool fits = size > text.size();
            EXPECT_EQ(GetParameter(name, "other", buffer, size), fits ? 5 : -9) << name << " " << size;
            EXPECT_EQ(std::string(buffer, 7), fits ? text + '\0' + "#" : "#######") << name << " " << size;
        }
    }
    char buffer[8] = {0};
    EXPECT_EQ(GetParameter(nullptr, "", buffer, sizeof(buffer)), -9);
    EXPECT_EQ(GetParameter("test.set", "", nullptr, sizeof(buffer)), -9);
}

// A death test, so that it runs before the parameters of this process are filled.
TEST(HostParameterDeathTest, TheEnvironmentFillsThem)
{
    constexpr char path[] = "host_parameter_test.parameters";  // in the folder that the test runs in
    const auto readAll = [](const char *file) {
        setenv("OSTRA_HOST_PARAMETER_FILE", file, 1);
        setenv("OSTRA_HOST_PARAMETERS", "test.both=from list; test.list=a=b;nothing;;test.empty=", 1);
        for (const char *name : {"test.file", "test.both", "test.semicolon", "test.list", "test.empty"}) {
            std::cerr << (Parameter(name) + "|");
        }
        std::exit(0);
    };
    std::ofstream(path)
        << "# a comment=1\n\n  test.file=from file \r\ntest.both=from file\nBAD-NAME=1\ntest.semicolon=a;b\n";
    EXPECT_EXIT(readAll(path), testing::ExitedWithCode(0),
                "^OSTRA_HOST_PARAMETER_FILE: skipping malformed entry \"BAD-NAME=1\"\n"
                "OSTRA_HOST_PARAMETERS: skipping malformed entry \"nothing\"\n"
                "from file[|]from list[|]a;b[|]a=b[|][|]$");
    EXPECT_EQ(unlink(path), 0);
    EXPECT_EXIT(readAll("/dev/null/file"), testing::ExitedWithCode(0),
                "cannot be opened\n(.*\n)*unset[|]from list[|]unset[|]");
}

TEST(HostParameter, ThreadsReadAndWriteWholeValues)
{
    const std::string values[] = {std::string(96, 'a'), "b"};
    const auto work = [&] {
        for (size_t i = 0; i < 500; ++i) {
            EXPECT_EQ(SetParameter("test.shared", values[i % 2].c_str()), 0);
            const std::string value = Parameter("test.shared");
            EXPECT_TRUE(value == values[0] || value == values[1]) << value;
        }
    };
    std::thread other(work);
    work();
    other.join();
}
