// SPDX-License-Identifier: Apache-2.0
//
// Golden tests: the log lines and messages of a test are compared with a golden file, the section of the test in
// PROGRAM_test.txt next to PROGRAM_test.cpp. Return values and fields are compared in the test itself.
//
//     using ChannelProtocolTest = GoldenTest;
//     TEST_F(ChannelProtocolTest, RejectsNegativeSize)
//     {
//         ChannelProtocol frame;
//         EXPECT_FALSE(CALL(frame.Create(5, -1)));     // frame.Create(5, -1)
//     }                                                //     E [ostraadapterutils][Create]:...
//
// scripts/update-golden rewrites the golden files. Only log lines of the library's type, domain and tag are recorded,
// and debug lines are ignored where the platform does not deliver them. Nothing is logged to the terminal.

#ifndef TESTS_GOLDEN_TEST_H
#define TESTS_GOLDEN_TEST_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

// The contents of PROGRAM_test.txt, which each program defines.
extern const char *const GOLDEN_FILE;

// Records the source of a call, makes the call and returns its result.
#define CALL(...) (Note(#__VA_ARGS__), __VA_ARGS__)

class GoldenTest : public ::testing::Test {
public:
    // Records a message, below the latest call. Thread-safe.
    static void Record(const std::string &message);

    // Discards what is recorded while `act` runs.
    static void Unrecorded(const std::function<void()> &act);

protected:
    void SetUp() override;
    void TearDown() override;

    // Records a line of the test itself.
    static void Note(const std::string &line);

    // Replaces `changing`, which is different in each run, by `shown` in the recorded lines.
    void Hide(const std::string &changing, const std::string &shown);

    // Runs `act` repeatedly, letting the next of the things that can fail (see fault.h) fail, until each has failed
    // once. Records each different outcome once.
    static void EachFault(const std::function<void()> &act);

private:
    std::vector<std::pair<std::string, std::string>> hidden_;
};

#endif  // TESTS_GOLDEN_TEST_H
