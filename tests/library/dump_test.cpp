// SPDX-License-Identifier: Apache-2.0

#include "ostra_dump.h"

#include <unistd.h>

#include <fstream>
#include <iterator>
#include <thread>

#include "ostra_dump_adapter.h"
#include "parameter.h"
#include "support/session.h"

const char *const SESSIONS =
#include "dump_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr char KEY[] = "sys.ostra.audio.dump.write.enable";

class Dump : public Session {
protected:
    void SetUp() override
    {
        Session::SetUp();
        Hide(name_, "NAME");
        SetParameter(KEY, "-1");
        Unrecorded([this] { dump_.UnInit(); });
    }

    void TearDown() override
    {
        unlink(Path(name_).c_str());
        Session::TearDown();
    }

    static std::string Path(const std::string &name)
    {
        return "/data/local/tmp/" + name;
    }

    void InitWith(const char *mode)
    {
        EXPECT_EQ(SetParameter(KEY, mode), 0);
        Unrecorded([this] { dump_.Init(); });
    }

    void Write(const std::string &name, const std::string &text)
    {
        dump_.DumpStreamData(name, reinterpret_cast<const unsigned char *>(text.data()), static_cast<int>(text.size()));
    }

    // What the file holds; then it is gone.
    std::string TakeFile(const std::string &name)
    {
        std::ifstream file(Path(name), std::ios::binary);
        unlink(Path(name).c_str());
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "no file";
    }

    OstraDump &dump_ = OstraDump::GetInstance();
    const std::string name_ = "dump_" + std::to_string(getpid());
};

TEST_F(Dump, FollowsTheParameter)
{
    SHOW(&dump_ == &OstraDump::GetInstance(), DUMP_WRITE_ENABLE_KEY, DUMP_DIR, DUMP_PATH_PREFIX);
    CALL(Write(name_, "x"));
    for (const std::string mode : {"-1", "a", "w", "012345678901234567890123456789", "w1234567890123456789012345678"}) {
        SHOW(mode);
        EXPECT_EQ(SetParameter(KEY, mode.c_str()), 0);
        CALL(dump_.Init());
        CALL(Write(name_, "x"));
        CALL(TakeFile(name_));
    }
}

TEST_F(Dump, ReadsAnyParameter)
{
    std::string value = "before";
    CALL(dump_.GetSysPara(nullptr, value));
    CALL(dump_.GetSysPara("sys.ostra.audio.dump.unset", value));
    EXPECT_EQ(SetParameter(KEY, "5"), 0);
    CALL(dump_.GetSysPara(KEY, value));
    EXPECT_EQ(SetParameter(KEY, ""), 0);
    CALL(dump_.GetSysPara(KEY, value));
    SHOW(value);
}

TEST_F(Dump, LeavesTheLatestOrAllBytes)
{
    for (const std::string mode : {"w", "a"}) {
        SHOW(mode);
        InitWith(mode.c_str());
        CALL(Write(name_, std::string("fir\0st", 6)));
        CALL(DumpStreamData(name_.c_str(), reinterpret_cast<const unsigned char *>("2nd"), 2));
        CALL(TakeFile(name_));
        CALL(Write(name_, "x"));
        CALL(Write(name_, ""));
        CALL(TakeFile(name_));
    }
}

TEST_F(Dump, RefusesInvalidInputAndWhenOff)
{
    const unsigned char data[] = {1};
    CALL(dump_.DumpStreamData(name_, nullptr, 1));
    InitWith("w");
    CALL(dump_.DumpStreamData(name_, nullptr, 1));
    CALL(dump_.DumpStreamData(name_, data, -1));
    CALL(Write("", "x"));  // the folder itself
    CALL(dump_.UnInit());
    CALL(Write(name_, "x"));
    CALL(dump_.OpenDumpFile(Path(name_)));
    CALL(TakeFile(name_));
}

TEST_F(Dump, OpensInTheModeThatWasReadAndLeavesNothingOpen)
{
    const int nextFree = dup(0);
    close(nextFree);
    InitWith("a");
    CALL(Write(name_, "x"));
    InitWith("-1");  // switches off but keeps the mode
    FILE *file = dump_.OpenDumpFile(Path(name_));
    ASSERT_NE(file, nullptr);
    SHOW(fileno(file) == nextFree, std::fgetc(file));
    CALL(dump_.CloseDumpFile(&file));
    SHOW(file);
    CALL(dump_.CloseDumpFile(&file));
    CALL(dump_.CloseDumpFile(nullptr));
    file = dump_.OpenDumpFile(Path(name_));
    SHOW(fileno(file) == nextFree);
    dump_.CloseDumpFile(&file);
    InitWith("w");
    file = dump_.OpenDumpFile(Path(name_));
    std::fputc('y', file);
    std::rewind(file);
    SHOW(std::fgetc(file));
    dump_.CloseDumpFile(&file);
}

TEST_F(Dump, TakesPathsUpToFiftyCharacters)
{
    const std::string longest = name_ + std::string(34 - name_.size(), 'x');
    Hide(longest, "LONGEST");
    InitWith("w");
    CALL(Write(longest, "fits"));
    CALL(TakeFile(longest));
    CALL(Write(longest + "x", "does not fit"));
    CALL(TakeFile(longest + "x"));
}

TEST_F(Dump, TellsWhatTheDiskDoesNotTake)
{
    ASSERT_EQ(symlink("/dev/full", Path(name_).c_str()), 0);
    for (const char *mode : {"w", "a"}) {
        InitWith(mode);
        CALL(Write(name_, ""));
        CALL(Write(name_, "x"));
        CALL(Write(name_, std::string(100000, 'x')));
    }
}

TEST_F(Dump, ThreadsDumpToFilesOfTheirOwn)
{
    InitWith("a");
    const auto dumpMany = [this](const std::string &name) {
        for (int i = 0; i < 50; ++i) {
            Write(name, "xy");
        }
    };
    std::thread other(dumpMany, name_ + "_other");
    dumpMany(name_);
    other.join();
    SHOW(TakeFile(name_).size(), TakeFile(name_ + "_other").size());
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
