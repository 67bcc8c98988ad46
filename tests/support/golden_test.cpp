// SPDX-License-Identifier: Apache-2.0

#include "support/golden_test.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>
#include <set>
#include <string_view>
#include <utility>

#include "hilog/log.h"
#include "support/fault.h"

namespace {

constexpr size_t MAX_MESSAGE_LENGTH = 2000;

bool g_isInCall = false;
std::string g_recorded;

// Appends a line to the record: a prefix and a message. Writes non-printable bytes and a trailing space in the form
// <E9>, starts continuation lines with a bar, and replaces a long message by its length.
void Append(const std::string &prefix, std::string_view message)
{
    const int countdown = std::exchange(Fault::countdown, -1);  // no faults here: recording allocates, too
    const bool isLong = message.size() > MAX_MESSAGE_LENGTH;
    const std::string output = isLong ? "<" + std::to_string(message.size()) + " bytes>" : std::string(message);
    g_recorded += prefix;
    for (const char &character : output) {
        const bool isLastSpace = character == ' ' && &character == &output.back();
        const auto byte = static_cast<unsigned char>(character);
        char escaped[8];
        std::snprintf(escaped, sizeof(escaped),
                      (std::isprint(byte) != 0 && !isLastSpace) || byte == '\t' ? "%c" : "<%02X>", byte);
        g_recorded += character == '\n' ? "\n    |" : escaped;
    }
    g_recorded += '\n';
    Fault::countdown = countdown;
}

void RecordLog(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *message)
{
    if (g_isInCall && type == LOG_CORE && domain == 0xD004160 && tag == std::string_view("OSTRA_ADAPTER")) {
        Append(std::string("    ") + "???DIWEF"[level] + " ", message);
    }
}

}  // namespace

GoldenTest::Recording::Recording(const char *source)
{
    Append("", source);
    g_isInCall = true;
}

GoldenTest::Recording::~Recording()
{
    g_isInCall = false;
}

void GoldenTest::SetUp()
{
    g_recorded.clear();
    LOG_SetCallback(RecordLog);
}

void GoldenTest::TearDown()
{
    LOG_SetCallback(nullptr);
    const ::testing::TestInfo &info = *::testing::UnitTest::GetInstance()->current_test_info();
    const std::string heading = std::string("=== ") + info.test_suite_name() + "." + info.name() + "\n";
    const std::string section = g_recorded.empty() ? "" : heading + g_recorded;
    if (const char *const output = std::getenv("OSTRA_UPDATE_GOLDEN")) {
        std::ofstream(output, std::ios::app) << section;
    } else {
        const std::string file(GOLDEN_FILE);
        const std::string rest = file.substr(std::min(file.find(heading), file.size()));
        EXPECT_EQ(rest.substr(0, rest.find("=== ", 1)), section) << "- is the golden file, + what was recorded";
    }
}

void GoldenTest::RecordEffect(const std::string &message)
{
    if (g_isInCall) {
        RecordLine(message);
    }
}

void GoldenTest::RecordLine(const std::string &message)
{
    Append("    ", message);
}

void GoldenTest::EachFault(const std::function<void()> &act, const std::function<void()> &check)
{
    std::set<std::string> outcomes = {""};
    int ordinal = 0;
    for (bool hasFailed = true; hasFailed; ++ordinal) {
        const size_t begin = g_recorded.size();
        Fault::countdown = ordinal;
        try {
            act();
        } catch (const std::bad_alloc &) {
            g_recorded.resize(begin);
        }
        hasFailed = std::exchange(Fault::countdown, -1) < 0;
        const std::string outcome = g_recorded.substr(begin);
        g_recorded.resize(begin);
        if (hasFailed && outcomes.insert(outcome).second) {
            g_recorded += "-- one fails\n" + outcome;
        }
        check();
    }
    EXPECT_GT(ordinal, 1) << "nothing can fail";
}

std::string GoldenTest::ReadFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "no file";
}
