// SPDX-License-Identifier: Apache-2.0
//
// Tests limits and log lines; parcelmap_fuzzer compares what is read and written with a reference.

#include "ipc_utils.h"

#include "message_parcel.h"
#include "ostra_constants.h"
#include "support/golden_test.h"

#include "ipc_utils_test.txt"

using OHOS::MessageParcel;
using namespace OHOS::DistributedHardware::OstraAdapter;

using IpcUtilsTest = GoldenTest;
using Map = std::map<int32_t, std::string>;

TEST_F(IpcUtilsTest, SkipsInvalidEntriesUntilOneCannotBeRead)
{
    const std::vector<std::string> entries = {"abc",          SEPARATOR + "v",  "x1#v",
                                              "2147483648#v", "-99999999999#v", std::string(101, '0') + "#v",
                                              "-5#a#b",       "-0#zero",        "+007#seven"};
    MessageParcel parcel;
    ASSERT_TRUE(parcel.WriteUint32(static_cast<uint32_t>(entries.size()) + 1));
    for (const std::string &entry : entries) {
        ASSERT_TRUE(parcel.WriteString(entry));
    }
    Map map = {{1, "kept"}, {-5, "replaced"}};
    EXPECT_FALSE(CALL(IpcUtils::UnMarshalling(parcel, map)));
    EXPECT_EQ(map, (Map{{-5, "a#b"}, {0, "zero"}, {1, "kept"}, {7, "seven"}}));
}

TEST_F(IpcUtilsTest, RejectsMoreThanTenThousandEntries)
{
    MessageParcel parcel;
    Map map;
    while (map.size() < 10000) {
        map.emplace(static_cast<int32_t>(map.size()), "v");
    }
    EXPECT_TRUE(IpcUtils::Marshalling(parcel, map));
    Map read;
    EXPECT_TRUE(IpcUtils::UnMarshalling(parcel, read));
    EXPECT_EQ(read, map);
    map.emplace(-1, "v");
    EXPECT_FALSE(CALL(IpcUtils::Marshalling(parcel, map)));
    ASSERT_TRUE(parcel.WriteUint32(10001));
    EXPECT_FALSE(CALL(IpcUtils::UnMarshalling(parcel, map)));
    EXPECT_EQ(parcel.GetReadableBytes(), 0u);
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
