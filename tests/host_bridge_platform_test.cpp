// SPDX-License-Identifier: Apache-2.0
//
// The host implementations that the bridge stands on: parcels, thread QoS, authorisation requests.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>

#include "concurrent_task_client.h"
#include "hilog/log.h"
#include "message_parcel.h"
#include "qos.h"

using namespace OHOS;
using namespace std::string_literals;

namespace {

bool Parse(Parcel &parcel, const std::string &bytes)
{
    return parcel.ParseFrom(reinterpret_cast<uintptr_t>(bytes.data()), bytes.size());
}

std::string Bytes(const Parcel &parcel)
{
    return {reinterpret_cast<const char *>(parcel.GetData()), parcel.GetDataSize()};
}

}  // namespace

TEST(HostParcel, LayoutIsLittleEndianAndPadded)
{
    MessageParcel parcel;
    EXPECT_TRUE(parcel.WriteUint32(0x89ABCDEF) && parcel.WriteString("") && parcel.WriteString("abc"));
    EXPECT_TRUE(parcel.WriteString("\xFF\0xy"s) && parcel.WriteString(std::string(260, 'z')));
    EXPECT_EQ(Bytes(parcel), "\xEF\xCD\xAB\x89\0\0\0\0\0\0\0\0\3\0\0\0abc\0\4\0\0\0\xFF\0xy\0\0\0\0\4\1\0\0"s +
                                 std::string(260, 'z') + "\0\0\0\0"s);
}

TEST(HostParcel, EveryLengthComesBackAndEveryCutFails)
{
    for (const std::string &text : {""s, "a"s, "abc"s, "abcd"s}) {
        Parcel whole;
        EXPECT_TRUE(whole.WriteUint32(7) && whole.WriteString(text));
        std::string bytes = Bytes(whole);
        std::string read;
        for (size_t cut = 0; cut <= bytes.size(); ++cut) {
            Parcel parcel;
            ASSERT_TRUE(Parse(parcel, bytes.substr(0, cut)));
            EXPECT_EQ(parcel.ReadUint32(), cut < 4 ? 0u : 7u);
            const bool isWhole = cut == bytes.size();
            read = "old";
            EXPECT_EQ(parcel.ReadString(read), isWhole) << text << " cut at " << cut;
            EXPECT_EQ(read, isWhole ? text : "");
            EXPECT_EQ(parcel.GetReadableBytes(), isWhole ? 0 : cut < 4 ? cut : cut - 4);
        }
        bytes[8 + text.size()] = 'x';  // in place of the zero byte behind the text
        EXPECT_TRUE(Parse(whole, bytes) && whole.RewindRead(4) && !whole.ReadString(read) && read.empty());
        EXPECT_EQ(whole.GetReadableBytes(), bytes.size() - 4);
    }
    for (const uint32_t length : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 0xFFFFFFFBu, 4u}) {
        Parcel parcel;
        std::string text = "old";
        EXPECT_TRUE(parcel.WriteUint32(length) && parcel.WriteUint32(0) && !parcel.ReadString(text)) << length;
        EXPECT_EQ(text + std::to_string(parcel.GetReadableBytes()), "8");
    }
}

TEST(HostParcel, WritesUpToTheCapacityAndNothingBeyond)
{
    Parcel parcel;
    EXPECT_EQ(parcel.GetMaxCapacity(), 204800u);
    EXPECT_FALSE(parcel.WriteString(std::string(204796, 'x')));
    EXPECT_TRUE(parcel.WriteString(std::string(204795, 'x')));
    EXPECT_FALSE(parcel.WriteUint32(1) || parcel.SetMaxCapacity(204799));
    EXPECT_TRUE(parcel.SetMaxCapacity(204804) && parcel.WriteUint32(1));
    EXPECT_FALSE(parcel.WriteString(""));
    EXPECT_EQ(parcel.GetDataSize(), 204804u);
}

TEST(HostParcel, ParsesAndRewindsOrStaysAsItWas)
{
    Parcel parcel;
    ASSERT_TRUE(Parse(parcel, "\1\0\0\0\2\0\0\0"s) && parcel.SetMaxCapacity(8));
    EXPECT_EQ(parcel.ReadUint32(), 1u);
    EXPECT_FALSE(parcel.ParseFrom(0, 1) || Parse(parcel, "123456789") || parcel.RewindRead(9));
    EXPECT_EQ(parcel.ReadUint32(), 2u);
    EXPECT_TRUE(parcel.RewindRead(8) && parcel.ParseFrom(parcel.GetData() + 4, 4));  // out of its own bytes
    EXPECT_EQ(parcel.ReadUint32(), 2u);
    EXPECT_TRUE(parcel.ParseFrom(0, 0));
    EXPECT_EQ(parcel.GetDataSize(), 0u);
}

TEST(HostQos, SchedulesAnotherThreadAndResetsItOrLeavesItAlone)
{
    const pid_t tid = getpid();  // of the thread that runs the tests
    const auto scheduling = [&] {
        return std::pair(sched_getscheduler(tid), getpriority(PRIO_PROCESS, static_cast<id_t>(tid)));
    };
    const std::pair<int, int> usual = scheduling();
    const std::pair<int, int> levels[] = {{SCHED_BATCH, 0},   {SCHED_BATCH, 0},   {SCHED_OTHER, 0}, {SCHED_OTHER, -5},
                                          {SCHED_OTHER, -10}, {SCHED_OTHER, -15}, {SCHED_BATCH, -5}};
    int level = 0;
    for (const auto &[policy, offset] : levels) {
        const std::pair<int, int> wanted(policy, usual.second + offset);
        const QOS::QosLevel qos{++level};
        std::thread([&] {
            const bool isGranted = setpriority(PRIO_PROCESS, 0, wanted.second) == 0;
            EXPECT_EQ(QOS::SetQosForOtherThread(qos, tid), isGranted ? 0 : -1) << level;
            EXPECT_EQ(scheduling(), isGranted ? wanted : usual) << level;
            EXPECT_EQ(QOS::ResetQosForOtherThread(tid), 0);
            EXPECT_EQ(scheduling(), usual);
        }).join();
    }
    for (const int bad : {INT_MIN, 0, 8, INT_MAX}) {
        EXPECT_EQ(QOS::SetQosForOtherThread(QOS::QosLevel{bad}, tid), -1) << bad;
    }
    for (const pid_t foreign : {-1, 0, INT_MAX, getppid()}) {  // the last of another process
        EXPECT_EQ(QOS::SetQosForOtherThread(QOS::QosLevel::QOS_BACKGROUND, foreign), -1) << foreign;
        EXPECT_EQ(QOS::ResetQosForOtherThread(foreign), -1) << foreign;
    }
}

TEST(HostConcurrentTask, RequestAuthWritesThePairsInTheOrderOfTheirKeys)
{
    static std::string lines;
    LOG_SetCallback([](const LogType type, const LogLevel level, unsigned int, const char *tag, const char *text) {
        lines += std::to_string(type) + std::to_string(level) + tag + ": " + text + "\n";
    });
    ConcurrentTask::ConcurrentTaskClient::GetInstance().RequestAuth({{"uid", "%s"}, {"pid", "4"}, {"a", ""}});
    ConcurrentTask::ConcurrentTaskClient::GetInstance().RequestAuth({});
    LOG_SetCallback(nullptr);
    EXPECT_EQ(lines, "34CONCURRENT_TASK: RequestAuth a= pid=4 uid=%s\n34CONCURRENT_TASK: RequestAuth\n");
}
