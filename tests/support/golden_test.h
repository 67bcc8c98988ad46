// SPDX-License-Identifier: Apache-2.0
//
// Golden tests: what is logged, published and written during the calls of a test is compared with a golden file, the
// section of the test in PROGRAM_test.txt next to PROGRAM_test.cpp. Return values and fields are compared in the test.
//
//     using ChannelProtocolTest = GoldenTest;
//     TEST_F(ChannelProtocolTest, RejectsNegativeSize)
//     {
//         ChannelProtocol frame;
//         EXPECT_FALSE(CALL(frame.Create(5, -1)));     // frame.Create(5, -1)
//     }                                                //     E [ostraadapterutils][Create]:...
//
// A program includes its golden file behind this header. scripts/update-golden rewrites the files. Only log lines of
// the library's type, domain and tag are recorded, and no debug lines, which a device does not deliver. Not
// thread-safe.

#ifndef TESTS_GOLDEN_TEST_H
#define TESTS_GOLDEN_TEST_H

#include <gtest/gtest.h>

#include <functional>
#include <string>

// The contents of PROGRAM_test.txt, which defines it.
extern const char *const GOLDEN_FILE;

// Makes a call, and records its source and what follows from it.
#define CALL(...) (Recording(#__VA_ARGS__), __VA_ARGS__)

class GoldenTest : public ::testing::Test {
public:
    // Records a message if it follows from a CALL.
    static void Record(const std::string &message);

    // Records a string of the test itself.
    static void Note(const std::string &line);

protected:
    struct Recording {
        explicit Recording(const char *source);
        ~Recording();
    };

    void SetUp() override;
    void TearDown() override;

    // Runs `act` repeatedly, letting the next of the things that can fail (see fault.h) fail, until nothing does. Each
    // time it then runs `check`, in which nothing fails. Records each different outcome once; but not those of an `act`
    // that throws std::bad_alloc, which depend on how the C++ library allocates.
    static void EachFault(
        const std::function<void()> &act, const std::function<void()> &check = [] {});
};

#endif  // TESTS_GOLDEN_TEST_H
