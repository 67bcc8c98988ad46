// SPDX-License-Identifier: Apache-2.0

#include "ostra_dump.h"

#include <unistd.h>

#include <fstream>
#include <iterator>

#include "ostra_dump_adapter.h"
#include "parameter.h"
#include "support/golden_test.h"

const char *const GOLDEN_FILE =
#include "ostra_dump_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

class OstraDumpTest : public GoldenTest {
protected:
    void SetUp() override
    {
        GoldenTest::SetUp();
        Hide(name_, "NAME");
        Unrecorded([this] { dump_.UnInit(); });
    }

    void TearDown() override
    {
        unlink(Path(name_).c_str());
        SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), "-1");
        GoldenTest::TearDown();
    }

    static std::string Path(const std::string &name)
    {
        return DUMP_PATH_PREFIX + name;
    }

    void InitWith(const char *mode)
    {
        EXPECT_EQ(SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), mode), 0);
        Unrecorded([this] { dump_.Init(); });
    }

    void Write(const std::string &name, const std::string &bytes)
    {
        const auto *data = reinterpret_cast<const unsigned char *>(bytes.data());
        dump_.DumpStreamData(name, data, static_cast<int>(bytes.size()));
    }

    // Returns the contents of a file, and deletes it.
    std::string TakeFile(const std::string &name)
    {
        std::ifstream file(Path(name), std::ios::binary);
        unlink(Path(name).c_str());
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "no file";
    }

    OstraDump &dump_ = OstraDump::GetInstance();
    const std::string name_ = "dump_" + std::to_string(getpid());
};

TEST_F(OstraDumpTest, FollowsTheParameter)
{
    CALL(Write(name_, "off"));
    const std::pair<std::string, std::string> cases[] = {{"-1", "no file"},
                                                         {"a", "x"},
                                                         {"w", "x"},
                                                         {"012345678901234567890123456789", "no file"},
                                                         {"w1234567890123456789012345678", "no file"}};
    for (const auto &[mode, content] : cases) {
        EXPECT_EQ(SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), mode.c_str()), 0);
        CALL(dump_.Init());
        CALL(Write(name_, "x"));
        EXPECT_EQ(TakeFile(name_), content);
    }
}

TEST_F(OstraDumpTest, ReadsAnyParameter)
{
    std::string value = "before";
    EXPECT_FALSE(CALL(dump_.GetSysPara(nullptr, value)));
    EXPECT_EQ(value, "before");
    EXPECT_FALSE(CALL(dump_.GetSysPara("sys.ostra.audio.dump.unset", value)));
    EXPECT_EQ(value, "-1");
    InitWith("5");
    EXPECT_TRUE(CALL(dump_.GetSysPara(DUMP_WRITE_ENABLE_KEY.c_str(), value)));
    InitWith("");
    EXPECT_FALSE(CALL(dump_.GetSysPara(DUMP_WRITE_ENABLE_KEY.c_str(), value)));
    EXPECT_EQ(value, "5");
}

TEST_F(OstraDumpTest, KeepsTheLastOrAllBytes)
{
    for (const bool keepsAll : {false, true}) {
        InitWith(keepsAll ? "a" : "w");
        Write(name_, std::string("fir\0st", 6));
        DumpStreamData(name_.c_str(), reinterpret_cast<const unsigned char *>("2nd"), 2);
        EXPECT_EQ(TakeFile(name_), keepsAll ? std::string("fir\0st2n", 8) : "2n");
        Write(name_, "x");
        Write(name_, "");
        EXPECT_EQ(TakeFile(name_), keepsAll ? "x" : "");
    }
}

TEST_F(OstraDumpTest, RejectsInvalidArguments)
{
    const unsigned char data[] = {1};
    CALL(dump_.DumpStreamData(name_, nullptr, 1));
    InitWith("w");
    CALL(dump_.DumpStreamData(name_, nullptr, 1));
    CALL(dump_.DumpStreamData(name_, data, -1));
    CALL(Write("", "x"));  // the directory itself
    CALL(dump_.UnInit());
    CALL(Write(name_, "x"));
    EXPECT_EQ(CALL(dump_.OpenDumpFile(Path(name_))), nullptr);
    EXPECT_EQ(TakeFile(name_), "no file");
}

TEST_F(OstraDumpTest, OpensFilesInTheCurrentModeAndClosesThem)
{
    const int nextFree = dup(0);
    close(nextFree);
    InitWith("a");
    Write(name_, "x");
    InitWith("-1");  // keeps the mode
    FILE *file = dump_.OpenDumpFile(Path(name_));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(fileno(file), nextFree);
    EXPECT_EQ(std::fgetc(file), 'x');
    dump_.CloseDumpFile(&file);
    EXPECT_EQ(file, nullptr);
    dump_.CloseDumpFile(&file);
    dump_.CloseDumpFile(nullptr);
    InitWith("w");
    file = dump_.OpenDumpFile(Path(name_));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(fileno(file), nextFree);
    std::fputc('y', file);
    std::rewind(file);
    EXPECT_EQ(std::fgetc(file), 'y');
    dump_.CloseDumpFile(&file);
}

TEST_F(OstraDumpTest, RejectsPathsOfMoreThanFiftyCharacters)
{
    const std::string longest = name_ + std::string(34 - name_.size(), 'x');
    InitWith("w");
    Write(longest, "fits");
    EXPECT_EQ(TakeFile(longest), "fits");
    Write(longest + "x", "does not fit");
    EXPECT_EQ(TakeFile(longest + "x"), "no file");
}

TEST_F(OstraDumpTest, LogsWhatTheDiskDoesNotAccept)
{
    ASSERT_EQ(symlink("/dev/full", Path(name_).c_str()), 0);
    for (const char *mode : {"w", "a"}) {
        InitWith(mode);
        CALL(Write(name_, ""));
        CALL(Write(name_, "x"));
        CALL(Write(name_, std::string(100000, 'x')));
    }
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
