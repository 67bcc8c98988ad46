// SPDX-License-Identifier: Apache-2.0

#include "ostra_dump.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>
#include <vector>

#include "ostra_dump_adapter.h"
#include "parameter.h"
#include "support/log_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr char KEY[] = "sys.ostra.audio.dump.write.enable";
constexpr char FOLDER[] = "/data/local/tmp/";

const LogLine INIT = InfoLine("Init", "Dump init");
const LogLine GETTING = InfoLine("GetSysPara", "Getting system parameter");
const LogLine FAILED = ErrorLine("GetSysPara", "GetParameter fail. key: " + std::string(KEY) + ", res:.");
const LogLine NOT_ENABLED = LibraryLine(LOG_WARN, "Init", "Audio dump is not enable.");
const LogLine REFUSED = LibraryLine(LOG_DEBUG, "DumpStreamData", "Dump is not enable.");
const LogLine INVALID = ErrorLine("DumpStreamData", "Iuput param is invalid.");

LogLine Got(const std::string &value)
{
    return InfoLine("GetSysPara", "GetSysPara key:" + std::string(KEY) + " value:" + value);
}

LogLine NotOpened(const std::string &path)
{
    return LibraryLine(LOG_DEBUG, "OpenDumpFile", "Error openning file: " + path + ".");
}

class DumpTest : public ::testing::Test {
protected:
    void TearDown() override
    {
        dump_.UnInit();
        SetParameter(KEY, "-1");
        std::filesystem::remove(FOLDER + name_);
    }

    void Enable(const char *mode)
    {
        ASSERT_EQ(SetParameter(KEY, mode), 0);
        dump_.Init();
        log_.Take();
    }

    void Dump(const std::string &text)
    {
        dump_.DumpStreamData(name_, reinterpret_cast<const unsigned char *>(text.data()),
                             static_cast<int>(text.size()));
    }

    std::string Content(const std::string &name) const
    {
        std::ifstream file(FOLDER + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    bool Exists() const
    {
        return std::filesystem::exists(FOLDER + name_);
    }

    OstraDump &dump_ = OstraDump::GetInstance();
    const std::string name_ = "dump_test_" + std::to_string(getpid());
    LogRecorder log_;
};

TEST_F(DumpTest, FollowsTheParameter)
{
    const struct {
        const char *value;  // null leaves the parameter unset
        LogLines expected;
        bool opens;
    } table[] = {
        {nullptr, {INIT, GETTING, Got("-1"), NOT_ENABLED}, false},
        {"a", {INIT, GETTING, Got("a")}, true},
        {"", {INIT, GETTING, FAILED, NOT_ENABLED}, false},
        {"w", {INIT, GETTING, Got("w")}, true},
        {"012345678901234567890123456789", {INIT, GETTING, FAILED, NOT_ENABLED}, false},
        {"w1234567890123456789012345678", {INIT, GETTING, Got("w1234567890123456789012345678")}, false},
        {"-1", {INIT, GETTING, Got("-1"), NOT_ENABLED}, false},
        {"aw", {INIT, GETTING, Got("aw")}, false},
        {"-1a", {INIT, GETTING, Got("-1a")}, false},
    };
    EXPECT_EQ(&dump_, &OstraDump::GetInstance());
    EXPECT_EQ(DUMP_DIR + "/", FOLDER);
    Dump("x");
    EXPECT_EQ(dump_.OpenDumpFile(FOLDER + name_), nullptr);
    EXPECT_EQ(log_.Take(), Loggable({REFUSED, NotOpened(FOLDER + name_)}));
    for (const auto &row : table) {
        if (row.value != nullptr) {
            ASSERT_EQ(SetParameter(KEY, row.value), 0);
        }
        dump_.Init();
        EXPECT_EQ(log_.Take(), row.expected);
        Dump("x");
        EXPECT_EQ(Exists(), row.opens);
        const LogLine refusal = row.expected.back() == NOT_ENABLED ? REFUSED : NotOpened(FOLDER + name_);
        EXPECT_EQ(log_.Take(), row.opens ? LogLines{} : Loggable({refusal}));
        std::filesystem::remove(FOLDER + name_);
    }
}

TEST_F(DumpTest, ReadsAnyParameter)
{
    std::string value = "before";
    EXPECT_FALSE(dump_.GetSysPara(nullptr, value));
    EXPECT_EQ(log_.Take(), (LogLines{GETTING, ErrorLine("GetSysPara", "key is null.")}));
    EXPECT_FALSE(dump_.GetSysPara("Bad Name", value));
    EXPECT_EQ(value, "before");
    EXPECT_FALSE(dump_.GetSysPara("test.unset", value));
    EXPECT_EQ(value, "-1");
    ASSERT_EQ(SetParameter("test.set", "5"), 0);
    EXPECT_TRUE(dump_.GetSysPara("test.set", value));
    EXPECT_EQ(value, "5");
}

TEST_F(DumpTest, LeavesTheLatestOrAllBytes)
{
    const int free = dup(0);
    close(free);
    Enable("w");
    Dump(std::string("fir\0st", 6));
    Dump("2nd");
    EXPECT_EQ(Content(name_), "2nd");
    Dump("");
    EXPECT_TRUE(Exists());
    EXPECT_EQ(Content(name_), "");
    Enable("a");
    Dump(std::string("fir\0st", 6));
    DumpStreamData(name_.c_str(), reinterpret_cast<const unsigned char *>("2nd"), 3);
    Dump("");
    EXPECT_EQ(Content(name_), std::string("fir\0st2nd", 9));
    FILE *file = dump_.OpenDumpFile(FOLDER + name_);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(fileno(file), free);
    EXPECT_EQ(std::fgetc(file), 'f');
    dump_.CloseDumpFile(&file);
    const int again = dup(0);
    close(again);
    EXPECT_EQ(again, free);
    EXPECT_TRUE(log_.Take().empty());
}

TEST_F(DumpTest, RefusesInvalidInputAndWhenOff)
{
    const unsigned char data[] = {1};
    for (const char *mode : {"-1", "w"}) {
        Enable(mode);
        dump_.DumpStreamData(name_, nullptr, 1);
        dump_.DumpStreamData(name_, data, -1);
        EXPECT_EQ(log_.Take(), (LogLines{INVALID, INVALID}));
    }
    dump_.UnInit();
    Dump("x");
    EXPECT_EQ(log_.Take(), Loggable({InfoLine("UnInit", "Dump unInit"), REFUSED}));
    EXPECT_EQ(dump_.OpenDumpFile(FOLDER + name_), nullptr);  // the mode is forgotten
    EXPECT_EQ(log_.Take(), Loggable({NotOpened(FOLDER + name_)}));
    EXPECT_FALSE(Exists());

    // An Init that switches off keeps the mode.
    Enable("w");
    Enable("-1");
    FILE *file = dump_.OpenDumpFile(FOLDER + name_);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::fgetc(file), EOF);
    EXPECT_NE(std::ferror(file), 1);
    dump_.CloseDumpFile(&file);
    EXPECT_EQ(file, nullptr);
    dump_.CloseDumpFile(&file);
    dump_.CloseDumpFile(nullptr);
}

TEST_F(DumpTest, TakesPathsUpToFiftyCharacters)
{
    Enable("w");
    const unsigned char data[] = {1};
    const std::string longest = name_ + std::string(34 - name_.size(), 'x');
    dump_.DumpStreamData(longest, data, 1);
    EXPECT_TRUE(std::filesystem::remove(FOLDER + longest));
    dump_.DumpStreamData(longest + "x", data, 1);
    EXPECT_FALSE(std::filesystem::exists(FOLDER + longest + "x"));
    EXPECT_TRUE(log_.Take().empty());
    dump_.DumpStreamData("", data, 1);  // the folder itself
    EXPECT_EQ(log_.Take(), Loggable({NotOpened(FOLDER)}));
    const std::vector<unsigned char> more(100000);
    dump_.DumpStreamData("../../../dev/full", more.data(), static_cast<int>(more.size()));
    EXPECT_EQ(log_.Take(), (LogLines{ErrorLine("DumpStreamData", "Failed to write the file")}));
}

TEST_F(DumpTest, ThreadsDumpToFilesOfTheirOwn)
{
    Enable("a");
    const auto dumpMany = [this](const std::string &suffix) {
        for (int i = 0; i < 50; ++i) {
            DumpStreamData((name_ + suffix).c_str(), reinterpret_cast<const unsigned char *>("xy"), 2);
        }
    };
    std::thread other(dumpMany, "_other");
    dumpMany("");
    other.join();
    EXPECT_EQ(std::filesystem::file_size(FOLDER + name_), 100U);
    EXPECT_EQ(std::filesystem::file_size(FOLDER + name_ + "_other"), 100U);
    std::filesystem::remove(FOLDER + name_ + "_other");
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
