// SPDX-License-Identifier: Apache-2.0
//
// The reader of the recorded files loses no case.

#include <gtest/gtest.h>

#include "recording.h"

using namespace replay;

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
