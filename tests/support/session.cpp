// SPDX-License-Identifier: Apache-2.0

#include "support/session.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <set>
#include <sstream>

#include "hilog/log.h"
#include "support/fault.h"
#include "support/quiet.h"

namespace {

constexpr unsigned int DOMAIN = 0xD004160;
constexpr char TAG[] = "OSTRA_ADAPTER";
constexpr char DEBUG_LINE[] = "    D ";

std::mutex g_mutex;
std::vector<std::string> g_left;  // what left the library since it was last noted

bool IsDebugDelivered()
{
    static const bool isDelivered = HiLogIsLoggable(DOMAIN, TAG, LOG_DEBUG);
    return isDelivered;
}

void Replace(std::string &text, const std::string &from, const std::string &to)
{
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

// Bytes that are not printed as <E9>, a blank at the end included, long runs of one byte as <4095 x 78>, and each line
// on a line of its own.
std::string Printable(const std::string &text)
{
    constexpr size_t shortestRun = 20;
    std::string printable;
    char number[32];
    for (size_t i = 0; i < text.size();) {
        const size_t run = std::min(text.find_first_not_of(text[i], i), text.size()) - i;
        const unsigned byte = static_cast<unsigned char>(text[i]);
        const bool isBlankInside = (text[i] == ' ' || text[i] == '\t') && i + 1 < text.size();
        const bool isPlain = (byte > ' ' && byte < 0x7F) || isBlankInside;
        const bool isRun = run >= shortestRun;
        if (isRun) {
            std::snprintf(number, sizeof(number), "<%zu x %02X>", run, byte);
        } else {
            std::snprintf(number, sizeof(number), isPlain ? "%c" : "<%02X>", byte);
        }
        printable += text[i] == '\n' ? "\n    |" : number;
        i += isRun ? run : 1;
    }
    return printable;
}

void RecordLog(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *message)
{
    static constexpr char letters[] = "???DIWEF";
    if (type == LOG_CORE && domain == DOMAIN && tag == std::string(TAG) && (level != LOG_DEBUG || IsDebugDelivered())) {
        const std::lock_guard<std::mutex> lock(g_mutex);
        g_left.push_back(std::string(1, letters[level]) + " " + Printable(message));
    }
}

std::string TestName()
{
    const ::testing::TestInfo *test = ::testing::UnitTest::GetInstance()->current_test_info();
    return std::string(test->test_suite_name()) + "." + test->name();
}

// The reviewed text of a test, without what the platform does not deliver.
std::string ReviewedText(const std::string &test)
{
    std::istringstream sessions(SESSIONS);
    std::string text;
    bool isWanted = false;
    for (std::string line; std::getline(sessions, line);) {
        if (line.rfind("=== ", 0) == 0) {
            isWanted = line == "=== " + test;
        } else if (isWanted && (line.rfind(DEBUG_LINE, 0) != 0 || IsDebugDelivered())) {
            text += line + "\n";
        }
    }
    return text;
}

}  // namespace

void Session::SetUp()
{
    g_left.clear();
    LOG_SetCallback(RecordLog);
}

void Session::TearDown()
{
    LOG_SetCallback(nullptr);
    Flush();
    const char *const update = std::getenv("OSTRA_UPDATE_SESSIONS");
    if (update == nullptr) {
        EXPECT_EQ(ReviewedText(TestName()), text_) << "- is the reviewed text, + what came";
        return;
    }
    ASSERT_TRUE(IsDebugDelivered()) << "what is not delivered would be lost from the texts";
    if (!text_.empty()) {
        std::ofstream(update, std::ios::app) << "=== " << TestName() << "\n" << text_;
    }
}

size_t Session::EndOfName(const std::string &names, size_t begin)
{
    int depth = 0;
    size_t end = begin;
    for (; end < names.size() && (depth > 0 || names[end] != ','); ++end) {
        depth += names[end] == '(' ? 1 : names[end] == ')' ? -1 : 0;
    }
    return end;
}

void Session::Flush()
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    for (std::string &left : std::exchange(g_left, {})) {
        for (const auto &[text, shown] : hidden_) {
            Replace(left, text, shown);
        }
        text_ += "    " + left + "\n";
    }
}

void Session::Note(const std::string &line)
{
    Flush();
    text_ += line + "\n";
}

void Session::Left(const std::string &line)
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_left.push_back(Printable(line));
}

void Session::Hide(const std::string &text, const std::string &shown)
{
    hidden_.emplace_back(text, shown);
}

void Session::Unrecorded(const std::function<void()> &act)
{
    Flush();
    const std::string before = text_;
    act();
    Flush();
    text_ = before;
}

void Session::EachFault(const std::function<void()> &act)
{
    Flush();
    std::set<std::string> outcomes;
    for (int ordinal = 0;; ++ordinal) {
        const std::string before = std::exchange(text_, "");
        Fault::Arm(ordinal);
        act();
        const bool hasStruck = Fault::Disarm();
        Flush();
        const std::string outcome = std::exchange(text_, before);
        if (!hasStruck) {
            return;
        }
        if (outcomes.insert(outcome).second) {
            Note("-- one fails");
            text_ += outcome;
        }
    }
}

std::string Session::Quoted(const std::string &text)
{
    return "\"" + Printable(text) + "\"";
}
