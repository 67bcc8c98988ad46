// SPDX-License-Identifier: Apache-2.0
//
// Golden tests compare what the calls of a test log, publish and write with a golden file: the section of the test in
// PROGRAM_test.txt, next to PROGRAM_test.cpp. Tests compare return values and fields themselves.
//
//     using ChannelProtocolTest = GoldenTest;
//     TEST_F(ChannelProtocolTest, RejectsNegativeSize)
//     {
//         ChannelProtocol frame;
//         EXPECT_FALSE(CALL(frame.Create(5, -1)));     // frame.Create(5, -1)
//     }                                                //     E [ostraadapterutils][Create]:...
//
// A program includes its golden file after this header. scripts/update-golden rewrites the files. Only log lines of the
// library's type, domain and tag are recorded. Not thread-safe.

#ifndef TESTS_GOLDEN_TEST_H
#define TESTS_GOLDEN_TEST_H

#include <gtest/gtest.h>

#include <functional>
#include <string>

// The contents of PROGRAM_test.txt, which defines it.
extern const char *const GOLDEN_FILE;

// Evaluates a call, and records its source text and its effects.
#define CALL(...) (Recording(#__VA_ARGS__), __VA_ARGS__)

class GoldenTest : public ::testing::Test {
public:
    // Records a message if a CALL is in progress. For functions that a test replaces.
    static void RecordEffect(const std::string &message);

    // Records a message, whether or not a CALL is in progress.
    static void RecordLine(const std::string &message);

protected:
    struct Recording {
        explicit Recording(const char *source);
        ~Recording();
    };

    void SetUp() override;
    void TearDown() override;

    // Runs `act` repeatedly, each time with a fault at the next failure point (see fault.h), until a run has no fault.
    // Runs `check` after each run, without faults. Records each distinct outcome once, except those of runs that throw
    // std::bad_alloc, which depend on how the C++ library allocates.
    static void EachFault(
        const std::function<void()> &act, const std::function<void()> &check = [] {});

    // Returns the contents of a file, or "no file".
    static std::string ReadFile(const std::string &path);
};

#endif  // TESTS_GOLDEN_TEST_H
