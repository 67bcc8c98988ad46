// SPDX-License-Identifier: Apache-2.0

#include "ipc_utils.h"

#include "message_parcel.h"
#include "support/session.h"

const char *const SESSIONS =
#include "sessions/ipc_utils_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using Map = std::map<int32_t, std::string>;

class Ipc : public Session {
protected:
    void Write(uint32_t count, const std::vector<std::string> &entries)
    {
        ASSERT_TRUE(parcel_.WriteUint32(count));
        for (const std::string &entry : entries) {
            ASSERT_TRUE(parcel_.WriteString(entry));
        }
    }

    void ShowMap(const Map &map)
    {
        for (const auto &[key, value] : map) {
            Note("    " + std::to_string(key) + ": " + Quoted(value));
        }
    }

    MessageParcel parcel_;
};

Map MapOf(int count)
{
    Map map;
    for (int key = 0; key < count; ++key) {
        map[key] = "v";
    }
    return map;
}

TEST_F(Ipc, WritesAscendingKeysAndReadsThemBack)
{
    Map map;
    CALL(IpcUtils::Marshalling(parcel_, {{7, std::string("x\0y", 3)}, {INT32_MIN, "a#b"}, {0, ""}}));
    CALL(IpcUtils::UnMarshalling(parcel_, map));
    ShowMap(map);
}

TEST_F(Ipc, MergesWhatItAcceptsAndSkipsTheRest)
{
    const std::string longest = std::string(99, '0') + "8";
    Write(15, {"abc", "", "x1#v", "#v", " 1#v", "+5#v", "007#w", "2147483648#v", "-2147483649#v", "99999999999#v",
               "2147483647#max", "-2147483648#min", longest + "#v", "0" + longest + "#v", "5#later"});
    Map map = {{1, "kept"}, {7, "replaced"}};
    CALL(IpcUtils::UnMarshalling(parcel_, map));
    ShowMap(map);
}

TEST_F(Ipc, StopsAtWhatItCannotRead)
{
    Map map = {{1, "kept"}};
    Write(3, {"2#two", "3#three"});
    CALL(IpcUtils::UnMarshalling(parcel_, map));
    ShowMap(map);
    Note("at the end of the parcel");
    CALL(IpcUtils::UnMarshalling(parcel_, map));
    Write(0, {"5#not read"});
    CALL(IpcUtils::UnMarshalling(parcel_, map));
    ShowMap(map);
}

TEST_F(Ipc, TakesTenThousandEntriesAndNoMore)
{
    CALL(IpcUtils::Marshalling(parcel_, MapOf(10001)));
    SHOW(parcel_.GetDataSize());
    CALL(IpcUtils::Marshalling(parcel_, MapOf(10000)));
    Map map;
    Unrecorded([&] { EXPECT_TRUE(IpcUtils::UnMarshalling(parcel_, map)); });
    SHOW(map == MapOf(10000));
    Write(10001, {"1#v"});
    map.clear();
    CALL(IpcUtils::UnMarshalling(parcel_, map));
    SHOW(map.size());
    std::string entry;
    SHOW(parcel_.ReadString(entry), entry);  // only the count was read
}

TEST_F(Ipc, KeepsWhatWasWrittenBeforeTheParcelIsFull)
{
    for (size_t room : {0U, 4U, 8U, 16U, 20U}) {
        Note("room for " + std::to_string(room) + " bytes");
        MessageParcel parcel;
        const size_t filled = parcel.GetMaxCapacity() - room;
        while (parcel.GetDataSize() < filled) {
            ASSERT_TRUE(parcel.WriteUint32(0));
        }
        CALL(IpcUtils::Marshalling(parcel, {{1, "a"}, {2, "b"}}));
        ASSERT_TRUE(parcel.RewindRead(filled));
        Map map;
        CALL(IpcUtils::UnMarshalling(parcel, map));
        ShowMap(map);
    }
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
