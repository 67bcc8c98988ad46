// SPDX-License-Identifier: Apache-2.0

#include "ipc_utils.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "message_parcel.h"
#include "support/log_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using Map = std::map<int32_t, std::string>;

const LogLine TOO_MANY_TO_WRITE = ErrorLine("Marshalling", "Params size is invalid!size : 10001");
const LogLine NOT_WRITTEN = ErrorLine("Marshalling", "write value failed!");

LogLine ReadError(const std::string &message)
{
    return ErrorLine("UnMarshalling", message);
}

LogLine Accepted(int key, const std::string &value)
{
    return InfoLine("UnMarshalling", "the key is " + std::to_string(key) + ", value is " + value);
}

std::vector<uint8_t> BytesOf(const Parcel &parcel)
{
    const auto *begin = reinterpret_cast<const uint8_t *>(parcel.GetData());
    return {begin, begin + parcel.GetDataSize()};
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

TEST(IpcUtils, WritesThePublishedBytesAndReadsThemBack)
{
    const Map map = {{INT_MIN, "a#b"}, {0, ""}, {7, std::string("x\0y", 3)}};
    MessageParcel parcel;
    ASSERT_TRUE(IpcUtils::Marshalling(parcel, map));
    const std::string bytes(
        "\x03\0\0\0"
        "\x0F\0\0\0-2147483648#a#b\0"
        "\x02\0\0\0"
        "0#\0\0"
        "\x05\0\0\0"
        "7#x\0y\0\0\0",
        44);
    EXPECT_EQ(BytesOf(parcel), std::vector<uint8_t>(bytes.begin(), bytes.end()));
    Map read;
    EXPECT_TRUE(IpcUtils::UnMarshalling(parcel, read));
    EXPECT_EQ(read, map);
}

TEST(IpcUtils, MergesWhatItAcceptsAndSkipsTheRest)
{
    const LogLine noSeparator = ReadError("Not found the separator!");
    const LogLine notNumeric = ReadError("key_str is not Num");
    const LogLine outOfRange = ReadError("key_str is out of range");
    const std::string longest = std::string(99, '0') + "8";
    MessageParcel parcel;
    Write(parcel, 15,
          {"abc", "", "x1#v", "#v", " 1#v", "+5#v", "007#w", "2147483648#v", "-2147483649#v", "99999999999#v",
           "2147483647#max", "-2147483648#min", longest + "#v", "0" + longest + "#v", "5#later"});
    Map map = {{1, "kept"}, {7, "replaced"}};
    LogRecorder log;
    EXPECT_TRUE(IpcUtils::UnMarshalling(parcel, map));
    EXPECT_EQ(map, (Map{{1, "kept"}, {5, "later"}, {7, "w"}, {8, "v"}, {INT_MAX, "max"}, {INT_MIN, "min"}}));
    const auto length = [](int size) {
        return ErrorLine("CheckIsNum", "Value string size " + std::to_string(size) + " is zero or too long.");
    };
    EXPECT_EQ(log.Take(),
              (LogLines{noSeparator, noSeparator, notNumeric, length(0), notNumeric, notNumeric, Accepted(5, "v"),
                        Accepted(7, "w"), outOfRange, outOfRange, outOfRange, Accepted(INT_MAX, "max"),
                        Accepted(INT_MIN, "min"), Accepted(8, "v"), length(101), notNumeric, Accepted(5, "later")}));

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
    EXPECT_EQ(log.Take(), (LogLines{TOO_MANY_TO_WRITE}));
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

// Wherever the data of a parcel stops, what came whole is accepted and the call says that the rest is missing.
TEST(IpcUtils, SurvivesEveryCut)
{
    const Map map = {{-1, "one"}, {0, ""}, {12345, "a longer value"}};
    MessageParcel whole;
    ASSERT_TRUE(IpcUtils::Marshalling(whole, map));
    const std::vector<uint8_t> bytes = BytesOf(whole);
    size_t mostAccepted = 0;
    for (size_t size = 0; size <= bytes.size(); ++size) {
        const std::vector<uint8_t> cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        MessageParcel parcel;
        ASSERT_TRUE(parcel.ParseFrom(reinterpret_cast<uintptr_t>(cut.data()), cut.size()));
        LogRecorder log;
        Map read;
        const bool hasCount = size >= 4;
        EXPECT_EQ(IpcUtils::UnMarshalling(parcel, read), size == bytes.size() || !hasCount) << size;
        const LogLines lines = log.Take();
        const bool isCut = hasCount && size < bytes.size();
        EXPECT_EQ(lines.size(), read.size() + (isCut ? 1 : 0)) << size;
        EXPECT_TRUE(!isCut || lines.back() == ReadError("read value failed!")) << size;
        ASSERT_GE(read.size(), mostAccepted);
        mostAccepted = read.size();
        for (const auto &[key, value] : read) {
            EXPECT_EQ(value, map.at(key));
        }
    }
    EXPECT_EQ(mostAccepted, map.size());
}

TEST(IpcUtils, KeepsWhatWasWrittenBeforeTheParcelIsFull)
{
    const Map map = {{1, "a"}, {2, "b"}};
    const size_t entrySize = 8;
    for (size_t capacity = 0; capacity < 4 + 2 * entrySize; ++capacity) {
        MessageParcel parcel;
        ASSERT_TRUE(parcel.SetMaxCapacity(capacity));
        LogRecorder log;
        EXPECT_EQ(IpcUtils::Marshalling(parcel, {}), capacity >= 4);
        EXPECT_EQ(log.Take(), capacity >= 4 ? LogLines{} : LogLines{NOT_WRITTEN});
        ASSERT_TRUE(parcel.ParseFrom(0, 0));
        EXPECT_FALSE(IpcUtils::Marshalling(parcel, map));
        EXPECT_EQ(log.Take(), (LogLines{NOT_WRITTEN}));
        EXPECT_EQ(parcel.GetDataSize(), capacity < 4 ? 0 : 4 + (capacity - 4) / entrySize * entrySize) << capacity;
    }
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
