// SPDX-License-Identifier: Apache-2.0

#include "support/golden_test.h"

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
constexpr char INDENT[] = "    ";

std::mutex g_mutex;
std::string g_recorded;

void Append(const std::string &lines)
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_recorded += lines + "\n";
}

// Sets what is recorded, and returns what was recorded before.
std::string Exchange(const std::string &recorded)
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    return std::exchange(g_recorded, recorded);
}

bool IsDebugDelivered()
{
    static const bool isDelivered = HiLogIsLoggable(DOMAIN, TAG, LOG_DEBUG);
    return isDelivered;
}

// Shows bytes that are not printable, and a space at the end, as <E9>, and long messages by their length. Further lines
// begin with a bar.
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
    static constexpr char letters[] = "???DIWEF";
    if (type == LOG_CORE && domain == DOMAIN && tag == std::string(TAG) && (level != LOG_DEBUG || IsDebugDelivered())) {
        GoldenTest::Record(std::string(1, letters[level]) + " " + message);
    }
}

// Returns the section of a test, without what the platform does not deliver.
std::string GoldenSection(const std::string &test)
{
    std::istringstream file(GOLDEN_FILE);
    std::string section;
    bool isInSection = false;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("=== ", 0) == 0) {
            isInSection = line == "=== " + test;
        } else if (isInSection && (line.rfind(INDENT + std::string("D "), 0) != 0 || IsDebugDelivered())) {
            section += line + "\n";
        }
    }
    return section;
}

}  // namespace

void GoldenTest::SetUp()
{
    Exchange("");
    LOG_SetCallback(RecordLog);
}

void GoldenTest::TearDown()
{
    LOG_SetCallback(nullptr);
    std::string recorded = Exchange("");
    for (const auto &[changing, shown] : hidden_) {
        for (size_t at = recorded.find(changing); at != std::string::npos; at = recorded.find(changing, at)) {
            recorded.replace(at, changing.size(), shown);
        }
    }
    const ::testing::TestInfo &info = *::testing::UnitTest::GetInstance()->current_test_info();
    const std::string test = std::string(info.test_suite_name()) + "." + info.name();
    const char *const output = std::getenv("OSTRA_UPDATE_GOLDEN");
    if (output == nullptr) {
        EXPECT_EQ(GoldenSection(test), recorded) << "- is the golden file, + what was recorded";
        return;
    }
    ASSERT_TRUE(IsDebugDelivered()) << "debug lines would be missing in the golden file";
    if (!recorded.empty()) {
        std::ofstream(output, std::ios::app) << "=== " << test << "\n" << recorded;
    }
}

void GoldenTest::Record(const std::string &message)
{
    Append(INDENT + Printable(message));
}

void GoldenTest::Note(const std::string &line)
{
    Append(line);
}

void GoldenTest::Hide(const std::string &changing, const std::string &shown)
{
    hidden_.emplace_back(changing, shown);
}

void GoldenTest::Unrecorded(const std::function<void()> &act)
{
    const std::string before = Exchange("");
    act();
    Exchange(before);
}

void GoldenTest::EachFault(const std::function<void()> &act)
{
    std::set<std::string> outcomes;
    bool hasStruck = true;
    for (int ordinal = 0; hasStruck; ++ordinal) {
        const std::string before = Exchange("");
        Fault::Arm(ordinal);
        act();
        hasStruck = Fault::Disarm();
        const std::string outcome = Exchange(before);
        if (hasStruck && outcomes.insert(outcome).second) {
            Append("-- one fails\n" + outcome.substr(0, outcome.size() - 1));
        }
    }
}
