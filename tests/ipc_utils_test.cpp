// SPDX-License-Identifier: Apache-2.0

#include "ipc_utils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <vector>

#include "message_parcel.h"
#include "support/log_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using Map = std::map<int32_t, std::string>;

LogLine ReadError(const std::string &message)
{
    return ErrorLine("UnMarshalling", message);
}

void Write(MessageParcel &parcel, uint32_t count, const std::vector<std::string> &entries)
{
    ASSERT_TRUE(parcel.WriteUint32(count));
    for (const std::string &entry : entries) {
        ASSERT_TRUE(parcel.WriteString(entry));
    }
}

Map EntriesUpTo(int count)
{
    Map map;
    for (int key = 0; key < count; ++key) {
        map[key] = "v";
    }
    return map;
}

// Wherever the data of a parcel stops, what came whole is accepted and the call says that the rest is missing.
TEST(IpcUtils, WritesThePublishedBytesAndReadsThemBackUpToAnyCut)
{
    const Map map = {{INT_MIN, "a#b"}, {0, ""}, {7, std::string("x\0y", 3)}};
    MessageParcel whole;
    ASSERT_TRUE(IpcUtils::Marshalling(whole, map));
    const std::string bytes(
        "\x03\0\0\0"
        "\x0F\0\0\0-2147483648#a#b\0"
        "\x02\0\0\0"
        "0#\0\0"
        "\x05\0\0\0"
        "7#x\0y\0\0\0",
        44);
    ASSERT_EQ(std::string(reinterpret_cast<const char *>(whole.GetData()), whole.GetDataSize()), bytes);
    const std::vector<size_t> ends = {24, 31, 42};  // of the entries, without their padding
    for (size_t size = 0; size <= bytes.size(); ++size) {
        MessageParcel parcel;
        void *block = std::malloc(bytes.size());  // the parcel frees it
        std::memcpy(block, bytes.data(), bytes.size());
        ASSERT_TRUE(parcel.ParseFrom(reinterpret_cast<uintptr_t>(block), size));
        LogRecorder log;
        Map read;
        const bool isCut = size >= 4 && size < ends.back();  // without its count, a parcel is empty
        EXPECT_EQ(IpcUtils::UnMarshalling(parcel, read), !isCut) << size;
        const auto count = std::upper_bound(ends.begin(), ends.end(), size) - ends.begin();
        EXPECT_EQ(read, Map(map.begin(), std::next(map.begin(), count))) << size;
        const LogLines lines = log.Take();
        EXPECT_EQ(lines.size(), read.size() + (isCut ? 1 : 0)) << size;
        EXPECT_TRUE(!isCut || lines.back() == ReadError("read value failed!")) << size;
    }
}

TEST(IpcUtils, MergesWhatItAcceptsAndSkipsTheRest)
{
    const LogLine noSeparator = ReadError("Not found the separator!");
    const LogLine notNumeric = ReadError("key_str is not Num");
    const LogLine outOfRange = ReadError("key_str is out of range");
    const auto length = [](int size) {
        return ErrorLine("CheckIsNum", "Value string size " + std::to_string(size) + " is zero or too long.");
    };
    const auto accepted = [](int key, const std::string &value) {
        return InfoLine("UnMarshalling", "the key is " + std::to_string(key) + ", value is " + value);
    };
    const std::string longest = std::string(99, '0') + "8";
    MessageParcel parcel;
    Write(parcel, 15,
          {"abc", "", "x1#v", "#v", " 1#v", "+5#v", "007#w", "2147483648#v", "-2147483649#v", "99999999999#v",
           "2147483647#max", "-2147483648#min", longest + "#v", "0" + longest + "#v", "5#later"});
    Map map = {{1, "kept"}, {7, "replaced"}};
    LogRecorder log;
    EXPECT_TRUE(IpcUtils::UnMarshalling(parcel, map));
    EXPECT_EQ(map, (Map{{1, "kept"}, {5, "later"}, {7, "w"}, {8, "v"}, {INT_MAX, "max"}, {INT_MIN, "min"}}));
    EXPECT_EQ(log.Take(),
              (LogLines{noSeparator, noSeparator, notNumeric, length(0), notNumeric, notNumeric, accepted(5, "v"),
                        accepted(7, "w"), outOfRange, outOfRange, outOfRange, accepted(INT_MAX, "max"),
                        accepted(INT_MIN, "min"), accepted(8, "v"), length(101), notNumeric, accepted(5, "later")}));

    MessageParcel empty;
    Write(empty, 0, {"1#not read"});
    EXPECT_TRUE(IpcUtils::UnMarshalling(empty, map));
    EXPECT_EQ(map.at(1), "kept");
    EXPECT_TRUE(log.Take().empty());
}

TEST(IpcUtils, TakesTenThousandEntriesAndNoMore)
{
    LogRecorder log;
    MessageParcel parcel;
    EXPECT_FALSE(IpcUtils::Marshalling(parcel, EntriesUpTo(10001)));
    EXPECT_EQ(parcel.GetDataSize(), 0U);
    EXPECT_EQ(log.Take(), (LogLines{ErrorLine("Marshalling", "Params size is invalid!size : 10001")}));
    EXPECT_TRUE(IpcUtils::Marshalling(parcel, EntriesUpTo(10000)));
    Map read;
    EXPECT_TRUE(IpcUtils::UnMarshalling(parcel, read));
    EXPECT_EQ(read, EntriesUpTo(10000));
    log.Take();

    MessageParcel tooMany;
    Write(tooMany, 10001, {"1#v"});
    read = {{3, "kept"}};
    EXPECT_FALSE(IpcUtils::UnMarshalling(tooMany, read));
    EXPECT_EQ(log.Take(), (LogLines{ReadError("Params size is invalid!size : 10001")}));
    EXPECT_EQ(read, (Map{{3, "kept"}}));
    std::string entry;
    EXPECT_TRUE(tooMany.ReadString(entry));  // only the count was read
}

TEST(IpcUtils, KeepsWhatWasWrittenBeforeTheParcelIsFull)
{
    const LogLines failure = {ErrorLine("Marshalling", "write value failed!")};
    const size_t entrySize = 8;
    for (size_t room = 0; room < 4 + 2 * entrySize; room += 4) {
        const std::vector<uint8_t> filling(MessageParcel().GetMaxCapacity() - room);
        MessageParcel empty;
        MessageParcel parcel;
        ASSERT_TRUE(empty.WriteBuffer(filling.data(), filling.size()));
        ASSERT_TRUE(parcel.WriteBuffer(filling.data(), filling.size()));
        LogRecorder log;
        EXPECT_EQ(IpcUtils::Marshalling(empty, {}), room >= 4);
        EXPECT_EQ(log.Take(), room >= 4 ? LogLines{} : failure);
        EXPECT_FALSE(IpcUtils::Marshalling(parcel, {{1, "a"}, {2, "b"}}));
        EXPECT_EQ(log.Take(), failure);
        ASSERT_TRUE(parcel.RewindRead(filling.size()));
        EXPECT_EQ(parcel.ReadUint32(), room < 4 ? 0U : 2U);
        EXPECT_EQ(parcel.ReadString(), room < 4 + entrySize ? "" : "1#a") << room;
    }
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
