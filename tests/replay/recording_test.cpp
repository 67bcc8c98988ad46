// SPDX-License-Identifier: Apache-2.0
//
// The reader of the recorded files: that it loses no case, and that each way to write a field is understood.

#include <gtest/gtest.h>

#include "recording.h"

using namespace replay;
using namespace std::string_literals;

TEST(Recording, HasAllCasesOfEveryFile)
{
    const std::map<std::string, size_t> files = {{"hilog-format.txt", 397}, {"hisysevent.txt", 228},
                                                 {"limiter.txt", 73},       {"parcel.txt", 307},
                                                 {"qos.txt", 67},           {"securec.txt", 369}};
    for (const auto &[name, count] : files) {
        EXPECT_EQ(ReadRecording(name).size(), count) << name;
    }
    EXPECT_THROW(ReadRecording("README.md"), std::invalid_argument);
    EXPECT_THROW(ReadRecording("none.txt"), std::invalid_argument);
}

TEST(Recording, UnderstandsEveryFormOfAField)
{
    EXPECT_EQ(Unfold("true \"x\"*3,\"\",\"a*2 00*2\"+\"y\"*2"), "true \"xxx\",\"\",\"a*2 00*2yy\"");
    EXPECT_EQ(Unfold("01 00*3 ffff 5a*2") + Unfold("0*2 -6*3") + Unfold("-"), "01 000000 ffff 5a5a0*2 -6*3-");
    EXPECT_EQ(Text(Unfold("\"a\\x00\"*2+\"\\x22\\x5c*2\"")), "a\0a\0\"\\*2"s);
    EXPECT_EQ(Bytes("01ff") + Bytes("-"), "\x01\xff");
    EXPECT_EQ(Quote("a\"\\\n\xff") + Hex("\x01\xff") + Hex(""), "\"a\\x22\\x5c\\x0a\\xff\"01ff-");
    EXPECT_EQ(Split("\"a,b\",-,\"\""), (Fields{"\"a,b\"", "-", "\"\""}));
    EXPECT_TRUE(Split("-").empty());
    EXPECT_EQ(Number<uint64_t>("18446744073709551615") + Number<uint64_t>("0x1"), 0u);
    EXPECT_EQ(Number<float>("-2.5") + static_cast<float>(Number<int8_t>("-1")), -3.5f);
    for (const char *bad : {"\"a", "a", "\"a\"b", "\"\\xg0\"", "0g", "012"}) {
        EXPECT_THROW(Text(bad), std::exception) << bad;
        EXPECT_THROW(Bytes(bad), std::exception) << bad;
    }
    EXPECT_THROW(Number<int>("1x"), std::exception);
}
