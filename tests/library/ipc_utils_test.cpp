// SPDX-License-Identifier: Apache-2.0

#include "ipc_utils.h"

#include "message_parcel.h"
#include "support/golden_test.h"

const char *const GOLDEN_FILE =
#include "ipc_utils_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using Map = std::map<int32_t, std::string>;

class IpcUtilsTest : public GoldenTest {
protected:
    void Write(uint32_t count, const std::vector<std::string> &entries)
    {
        ASSERT_TRUE(parcel_.WriteUint32(count));
        for (const std::string &entry : entries) {
            ASSERT_TRUE(parcel_.WriteString(entry));
        }
    }

    MessageParcel parcel_;
};

TEST_F(IpcUtilsTest, SkipsInvalidEntries)
{
    Write(9, {"abc", "#v", "x1#v", "2147483648#v", "-99999999999#v", std::string(101, '0') + "#v", "-5#a#b", "-0#zero",
              "+007#seven"});
    Map map = {{1, "kept"}, {-5, "replaced"}};
    EXPECT_TRUE(CALL(IpcUtils::UnMarshalling(parcel_, map)));
    EXPECT_EQ(map, (Map{{-5, "a#b"}, {0, "zero"}, {1, "kept"}, {7, "seven"}}));
}

TEST_F(IpcUtilsTest, KeepsEntriesBeforeOneThatCannotBeRead)
{
    Map map = {{1, "kept"}};
    Write(3, {"2#two", "3#three"});
    EXPECT_FALSE(CALL(IpcUtils::UnMarshalling(parcel_, map)));
    EXPECT_EQ(map, (Map{{1, "kept"}, {2, "two"}, {3, "three"}}));
}

TEST_F(IpcUtilsTest, RejectsMoreThanTenThousandEntries)
{
    Map map;
    while (map.size() < 10000) {
        map.emplace(static_cast<int32_t>(map.size()), "v");
    }
    EXPECT_TRUE(IpcUtils::Marshalling(parcel_, map));
    Map read;
    Unrecorded([&] { EXPECT_TRUE(IpcUtils::UnMarshalling(parcel_, read)); });
    EXPECT_EQ(read, map);
    map.emplace(-1, "v");
    EXPECT_FALSE(CALL(IpcUtils::Marshalling(parcel_, map)));
    Write(10001, {});
    EXPECT_FALSE(CALL(IpcUtils::UnMarshalling(parcel_, map)));
    EXPECT_EQ(parcel_.GetReadableBytes(), 0u);
    EXPECT_EQ(map.size(), 10001u);
}

TEST_F(IpcUtilsTest, KeepsEntriesWrittenBeforeTheParcelIsFull)
{
    const std::pair<size_t, Map> cases[] = {{0, {}}, {16, {{1, "a"}}}, {20, {{1, "a"}, {2, "b"}}}};
    for (const auto &[room, expected] : cases) {
        MessageParcel parcel;
        const size_t filled = parcel.GetMaxCapacity() - room;
        while (parcel.GetDataSize() < filled) {
            ASSERT_TRUE(parcel.WriteUint32(0));
        }
        EXPECT_EQ(CALL(IpcUtils::Marshalling(parcel, {{1, "a"}, {2, "b"}})), room == 20);
        ASSERT_TRUE(parcel.RewindRead(filled));
        Map map;
        EXPECT_EQ(CALL(IpcUtils::UnMarshalling(parcel, map)), room != 16);
        EXPECT_EQ(map, expected);
    }
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
