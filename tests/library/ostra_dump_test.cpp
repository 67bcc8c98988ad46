// SPDX-License-Identifier: Apache-2.0

#include "ostra_dump.h"

#include <unistd.h>

#include "ostra_dump_adapter.h"
#include "parameter.h"
#include "support/golden_test.h"

#include "ostra_dump_test.txt"

using namespace OHOS::DistributedHardware::OstraAdapter;

const unsigned char *Bytes(const std::string &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.data());
}

class OstraDumpTest : public GoldenTest {
protected:
    void TearDown() override
    {
        dump_.UnInit();
        unlink(path_.c_str());
        SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), "-1");
        GoldenTest::TearDown();
    }

    void InitWith(const std::string &mode)
    {
        EXPECT_EQ(SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), mode.c_str()), 0);
        dump_.Init();
    }

    void Write(const std::string &bytes)
    {
        dump_.DumpStreamData(name_, Bytes(bytes), static_cast<int>(bytes.size()));
    }

    OstraDump &dump_ = OstraDump::GetInstance();
    const std::string name_ = std::to_string(getpid()) + std::string(34 - std::to_string(getpid()).size(), 'x');
    const std::string path_ = DUMP_PATH_PREFIX + name_;
};

TEST_F(OstraDumpTest, TruncatesOrAppendsByMode)
{
    const std::string first("fir\0st", 6);
    const std::pair<std::string, std::string> cases[] = {{"-1", "no file"},
                                                         {"a", first + "2n"},
                                                         {"w", "2n"},
                                                         {"012345678901234567890123456789", "no file"},
                                                         {"w1234567890123456789012345678", "no file"}};
    for (const auto &[mode, content] : cases) {
        CALL(InitWith(mode));
        Write(first);
        DumpStreamData(name_.c_str(), Bytes("2nd"), 2);
        EXPECT_EQ(ReadFile(path_), content);
        unlink(path_.c_str());
    }
    InitWith("w");
    Write("x");
    Write("");
    EXPECT_EQ(ReadFile(path_), "");
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

TEST_F(OstraDumpTest, RejectsInvalidArguments)
{
    CALL(dump_.DumpStreamData(name_, nullptr, 1));
    InitWith("w");
    CALL(dump_.DumpStreamData(name_, Bytes("x"), -1));
    CALL(dump_.DumpStreamData(name_ + "x", Bytes("x"), 1));
    EXPECT_EQ(access((path_ + "x").c_str(), F_OK), -1) << "more than 50 bytes";
    EXPECT_EQ(SetParameter("hilog.loggable.tag.OSTRA_ADAPTER", "D"), 0);
    CALL(dump_.UnInit());
    CALL(Write("x"));
    EXPECT_EQ(CALL(dump_.OpenDumpFile("never opened")), nullptr);
    EXPECT_EQ(ReadFile(path_), "no file");
}

TEST_F(OstraDumpTest, OpensFilesInTheCurrentModeAndClosesThem)
{
    const int nextFree = dup(0);
    close(nextFree);
    for (const std::string mode : {"a", "w"}) {
        InitWith(mode);
        Write("x");
        InitWith("-1");  // keeps the mode
        FILE *file = dump_.OpenDumpFile(path_);
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(fileno(file), nextFree);
        EXPECT_EQ(std::fgetc(file), mode == "a" ? 'x' : EOF);
        std::rewind(file);
        std::fputc('y', file);
        std::rewind(file);
        EXPECT_EQ(std::fgetc(file), mode == "a" ? 'x' : 'y');
        dump_.CloseDumpFile(&file);
        EXPECT_EQ(file, nullptr);
        dump_.CloseDumpFile(&file);
        dump_.CloseDumpFile(nullptr);
    }
}

TEST_F(OstraDumpTest, LogsWriteErrors)
{
    ASSERT_EQ(symlink("/dev/full", path_.c_str()), 0);
    InitWith("w");
    CALL(Write(""));
    CALL(Write("x"));
    CALL(Write(std::string(100000, 'x')));
}
