// SPDX-License-Identifier: Apache-2.0
//
// A session: a test makes calls, and what leaves the library meanwhile, each call with its result and below it what was
// logged, is written down and held against a reviewed text, the section of the test in sessions/PROGRAM.txt.
//
//     using Frame = Session;
//     TEST_F(Frame, RefusesNegativeSizes)
//     {
//         ChannelProtocol frame;
//         CALL(frame.Create(5, -1));          // frame.Create(5, -1) = false
//         SHOW(frame.offset_);                //     E [ostraadapterutils][Create]:...
//     }                                       // frame.offset_ = 0
//
// scripts/update-sessions rewrites the texts; review their difference. Of the log only lines of the library's type,
// domain and tag are noted; debug lines do not count where the platform does not deliver them. A program that defines
// SESSIONS writes no log to the terminal.

#ifndef TESTS_SESSION_H
#define TESTS_SESSION_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// The reviewed texts of the program: const char *const SESSIONS = the text of sessions/PROGRAM.txt.
extern const char *const SESSIONS;

// Makes the call that its argument is, and notes it.
#define CALL(...) Call(#__VA_ARGS__, [&] { return __VA_ARGS__; })
// Notes the values of several expressions.
#define SHOW(...) ShowAll(#__VA_ARGS__, __VA_ARGS__)

class Session : public ::testing::Test {
public:
    // Notes what reached the platform, below the call that is being made. Any thread may call it.
    static void Left(const std::string &line);

protected:
    void SetUp() override;
    void TearDown() override;

    // Notes a line of the test's own; what left the library before stands above it.
    void Note(const std::string &line);

    // From now on the texts show `shown` in place of `text`, which changes from run to run.
    void Hide(const std::string &text, const std::string &shown);

    // Drops what is noted and what leaves the library while `act` runs.
    void Unrecorded(const std::function<void()> &act);

    // Runs `act` again and again, with one more thing that can fail (see fault.h) failing each time, until all have
    // failed once, and notes each outcome once.
    void EachFault(const std::function<void()> &act);

    template <typename Action>
    void Call(const std::string &call, const Action &act)
    {
        Flush();
        std::string line = call;
        if constexpr (std::is_void_v<decltype(act())>) {
            act();
        } else {
            line += " = " + Text(act());
        }
        text_ += line + "\n";
    }

    template <typename... Values>
    void ShowAll(const std::string &names, const Values &...values)
    {
        size_t begin = 0;
        std::string line;
        const auto add = [&](const std::string &value) {
            constexpr size_t longestLine = 110;
            const size_t end = EndOfName(names, begin);
            const std::string shown = names.substr(begin, end - begin) + " = " + value;
            begin = end + 2;
            if (!line.empty() && line.size() + shown.size() > longestLine) {
                Note(std::exchange(line, ""));
            }
            line += (line.empty() ? "" : ", ") + shown;
        };
        (add(Text(values)), ...);
        Note(line);
    }

    template <typename Value>
    static std::string Text(const Value &value)
    {
        if constexpr (std::is_same_v<Value, bool>) {
            return value ? "true" : "false";
        } else if constexpr (std::is_integral_v<Value>) {
            return std::to_string(value);
        } else if constexpr (std::is_pointer_v<Value>) {
            return value == nullptr ? "null" : "not null";
        } else {
            return Quoted(std::string(value.begin(), value.end()));
        }
    }

    // A text in quotation marks; bytes that are not printed as <E9>, long runs of one byte as <4095 x 78>.
    static std::string Quoted(const std::string &text);

private:
    // Where the name that begins there ends: at the next comma outside brackets.
    static size_t EndOfName(const std::string &names, size_t begin);

    // Notes what left the library since the last time.
    void Flush();

    std::string text_;
    std::vector<std::pair<std::string, std::string>> hidden_;
};

#endif  // TESTS_SESSION_H
