// SPDX-License-Identifier: Apache-2.0

#include "support/golden_test.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <new>
#include <set>

#include "hilog/log.h"
#include "support/fault.h"

namespace {

bool g_isRecording = false;
std::string g_recorded;

// Escapes non-printable bytes and a trailing space in the form <E9>, replaces a long message by its length, and starts
// continuation lines with a bar.
std::string Printable(const std::string &message)
{
    constexpr size_t maxLength = 2000;
    if (message.size() > maxLength) {
        return "<" + std::to_string(message.size()) + " bytes>";
    }
    std::string printable;
    for (const char &character : message) {
        const bool isLastSpace = character == ' ' && &character == &message.back();
        const bool isPlain = (character >= ' ' && character <= '~' && !isLastSpace) || character == '\t';
        char shown[8];
        std::snprintf(shown, sizeof(shown), isPlain ? "%c" : "<%02X>", static_cast<unsigned char>(character));
        printable += character == '\n' ? "\n    |" : shown;
    }
    return printable;
}

void RecordLog(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *message)
{
    const Fault::Pause pause;
    if (type == LOG_CORE && domain == 0xD004160 && tag == std::string("OSTRA_ADAPTER") && level != LOG_DEBUG) {
        GoldenTest::Record(std::string(1, "???DIWEF"[level]) + " " + message);
    }
}

// Returns the lines that follow a heading.
std::string GoldenSection(const std::string &heading)
{
    const std::string file(GOLDEN_FILE);
    const size_t begin = file.find(heading);
    if (begin == std::string::npos) {
        return "";
    }
    const size_t length = file.substr(begin + heading.size()).find("=== ");
    return file.substr(begin + heading.size(), length);
}

}  // namespace

GoldenTest::Recording::Recording(const char *source)
{
    const Fault::Pause pause;
    g_recorded += source + std::string("\n");
    g_isRecording = true;
}

GoldenTest::Recording::~Recording()
{
    g_isRecording = false;
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
    const char *const output = std::getenv("OSTRA_UPDATE_GOLDEN");
    if (output == nullptr) {
        EXPECT_EQ(GoldenSection(heading), g_recorded) << "- is the golden file, + what was recorded";
    } else if (!g_recorded.empty()) {
        std::ofstream(output, std::ios::app) << heading << g_recorded;
    }
}

void GoldenTest::Note(const std::string &line)
{
    const Fault::Pause pause;
    g_recorded += "    " + Printable(line) + "\n";
}

void GoldenTest::Record(const std::string &message)
{
    if (g_isRecording) {
        Note(message);
    }
}

void GoldenTest::EachFault(const std::function<void()> &act, const std::function<void()> &check)
{
    std::set<std::string> outcomes = {""};
    int ordinal = 0;
    for (bool hasFailed = true; hasFailed; ++ordinal) {
        const size_t begin = g_recorded.size();
        bool hasThrown = false;
        Fault::Arm(ordinal);
        try {
            act();
        } catch (const std::bad_alloc &) {
            hasThrown = true;
        }
        hasFailed = Fault::Disarm();
        check();
        const std::string outcome = g_recorded.substr(begin);
        g_recorded.resize(begin);
        if (hasFailed && !hasThrown && outcomes.insert(outcome).second) {
            g_recorded += "-- one fails\n" + outcome;
        }
    }
    EXPECT_GT(ordinal, 1) << "nothing can fail";
}
