// SPDX-License-Identifier: Apache-2.0
//
// The host implementations that the bridge stands on: publishing, parcels, thread QoS, authorisation requests.

#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstdint>
#include <functional>
#include <future>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "concurrent_task_client.h"
#include "distributed_hardware_fwk_kit.h"
#include "hilog/log.h"
#include "message_parcel.h"
#include "qos.h"

using namespace OHOS;
using namespace OHOS::DistributedHardware;
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

struct Listener : IPublisherListener {
    explicit Listener(std::function<void(const std::string &)> action) : act(std::move(action))
    {
    }
    void OnMessage(const DHTopic topic, const std::string &message) override
    {
        act(std::to_string(static_cast<uint32_t>(topic)) + message);
    }
    std::function<void(const std::string &)> act;
};

// Runs on a thread of its own, and gives the result.
template <typename Function>
auto OnThread(Function function)
{
    return std::async(std::launch::async, function).get();
}

// Policy and nice value.
std::pair<int, int> SchedulingOf(pid_t tid)
{
    return {sched_getscheduler(tid), getpriority(PRIO_PROCESS, static_cast<id_t>(tid))};
}

}  // namespace

TEST(HostParcel, LayoutIsLittleEndianAndPadded)
{
    MessageParcel parcel;
    EXPECT_TRUE(parcel.WriteUint32(0x89ABCDEF));
    for (const std::string &text : {""s, "a"s, "abc"s, "\xFF\0xy"s, std::string(260, 'z')}) {
        EXPECT_TRUE(parcel.WriteString(text));
    }
    EXPECT_EQ(Bytes(parcel),
              "\xEF\xCD\xAB\x89"
              "\0\0\0\0\0\0\0\0"
              "\1\0\0\0a\0\0\0"
              "\3\0\0\0abc\0"
              "\4\0\0\0\xFF\0xy\0\0\0\0"
              "\4\1\0\0"s +
                  std::string(260, 'z') + "\0\0\0\0"s);
}

TEST(HostParcel, EveryLengthComesBackAndEveryCutFails)
{
    for (size_t length = 0; length <= 9; ++length) {
        const std::string text = "abcdefghi"s.substr(0, length);
        Parcel whole;
        whole.WriteUint32(7);
        whole.WriteString(text);
        std::string bytes = Bytes(whole);
        for (size_t cut = 0; cut <= bytes.size(); ++cut) {
            Parcel parcel;
            ASSERT_TRUE(Parse(parcel, bytes.substr(0, cut)));
            EXPECT_EQ(parcel.ReadUint32(), cut < 4 ? 0u : 7u);
            EXPECT_EQ(parcel.GetReadableBytes(), cut < 4 ? cut : cut - 4);
            const bool isWhole = cut == bytes.size();
            std::string read = "old";
            EXPECT_EQ(parcel.ReadString(read), isWhole) << length << " cut at " << cut;
            EXPECT_EQ(read, isWhole ? text : "");
            EXPECT_EQ(parcel.GetReadableBytes(), isWhole ? 0 : cut < 4 ? cut : cut - 4);
        }
        bytes[8 + length] = 'x';  // in place of the zero byte behind the text
        std::string read = "old";
        EXPECT_TRUE(Parse(whole, bytes) && whole.RewindRead(4) && !whole.ReadString(read) && read.empty());
        EXPECT_EQ(whole.GetReadableBytes(), bytes.size() - 4);
    }
}

TEST(HostParcel, RefusesLengthsThatCannotBe)
{
    for (uint32_t length : {0x7FFFFFFFu, 0x7FFFFFFBu, 0x80000000u, 0xFFFFFFFFu, 0xFFFFFFFBu, 8u, 4u}) {
        Parcel parcel;
        parcel.WriteUint32(length);
        parcel.WriteUint32(0);
        std::string text = "old";
        EXPECT_FALSE(parcel.ReadString(text)) << length;
        EXPECT_EQ(text, "");
        EXPECT_EQ(parcel.GetReadableBytes(), 8u);
    }
}

TEST(HostParcel, WritesUpToTheCapacityAndNothingBeyond)
{
    Parcel parcel;
    EXPECT_EQ(parcel.GetMaxCapacity(), 204800u);
    EXPECT_FALSE(parcel.WriteString(std::string(204796, 'x')));
    EXPECT_TRUE(parcel.WriteString(std::string(204795, 'x')));
    EXPECT_FALSE(parcel.SetMaxCapacity(204799));
    EXPECT_TRUE(parcel.SetMaxCapacity(204800));
    EXPECT_TRUE(parcel.SetMaxCapacity(SIZE_MAX) && parcel.WriteString("more"));

    for (size_t room = 0; room <= 12; ++room) {
        Parcel small;
        small.WriteUint32(1);
        ASSERT_TRUE(small.SetMaxCapacity(4 + room));
        EXPECT_EQ(small.WriteString("ab"), room >= 8) << room;
        EXPECT_EQ(small.GetDataSize(), room >= 8 ? 12u : 4u);
        EXPECT_EQ(small.WriteUint32(1), room % 8 >= 4) << room;
    }
}

TEST(HostParcel, ParsesAndRewindsOrStaysAsItWas)
{
    Parcel parcel;
    ASSERT_TRUE(Parse(parcel, "\1\0\0\0\2\0\0\0"s) && parcel.SetMaxCapacity(8));
    EXPECT_EQ(parcel.ReadUint32(), 1u);
    EXPECT_FALSE(parcel.ParseFrom(0, 1) || Parse(parcel, "123456789") || parcel.RewindRead(9));
    EXPECT_EQ(parcel.ReadUint32(), 2u);
    EXPECT_TRUE(parcel.RewindRead(0) && parcel.RewindRead(8));
    EXPECT_TRUE(parcel.ParseFrom(parcel.GetData() + 4, 4));  // out of its own bytes
    EXPECT_EQ(parcel.ReadUint32(), 2u);
    EXPECT_TRUE(parcel.ParseFrom(0, 0));
    EXPECT_EQ(parcel.GetDataSize() + parcel.GetReadableBytes(), 0u);
}

TEST(HostParcel, ManyStringsMoveTheDataRarely)
{
    Parcel parcel;
    std::set<uintptr_t> addresses;
    for (int i = 0; i < 10000; ++i) {
        ASSERT_TRUE(parcel.WriteString("1234567"));
        addresses.insert(parcel.GetData());
    }
    EXPECT_LT(addresses.size(), 64u);
}

TEST(HostPublisher, ReachesTheListenersOfTheTopicThroughAnyKit)
{
    constexpr DHTopic topic{8};
    constexpr DHTopic otherTopic{UINT32_MAX};
    std::string heard;
    const sptr<IPublisherListener> first(
        new Listener([&](const std::string &text) { heard += "first " + text + ' '; }));
    const sptr<IPublisherListener> second(new Listener([&](const std::string &text) { heard += "second " + text; }));
    DistributedHardwareFwkKit kit;
    EXPECT_EQ(DistributedHardwareFwkKit().RegisterPublisherListener(topic, first), 0);
    EXPECT_EQ(DistributedHardwareFwkKit().RegisterPublisherListener(topic, second), 0);
    EXPECT_LT(kit.RegisterPublisherListener(topic, first), 0);
    EXPECT_LT(kit.RegisterPublisherListener(topic, nullptr), 0);
    EXPECT_LT(kit.RegisterPublisherListener(DHTopic::TOPIC_MIN, first), 0);
    EXPECT_LT(kit.PublishMessage(DHTopic::TOPIC_MIN, "m"), 0);
    EXPECT_EQ(kit.PublishMessage(otherTopic, "nobody listens"), 0);
    EXPECT_EQ(kit.PublishMessage(topic, "m"), 0);
    EXPECT_EQ(std::exchange(heard, ""), "first 8m second 8m");

    EXPECT_EQ(kit.UnregisterPublisherListener(topic, first), 0);
    EXPECT_LT(kit.UnregisterPublisherListener(topic, first), 0);
    EXPECT_LT(kit.UnregisterPublisherListener(otherTopic, second), 0);
    EXPECT_EQ(kit.PublishMessage(topic, "n"), 0);
    EXPECT_EQ(heard, "second 8n");
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, second), 0);
    EXPECT_EQ(second.use_count(), 1);
}

TEST(HostPublisher, ListenersMayUseTheKitAndOtherThreadsMayPublishMeanwhile)
{
    constexpr DHTopic topic{20};
    constexpr DHTopic otherTopic{21};
    DistributedHardwareFwkKit kit;
    std::atomic<int> heard{0};
    const sptr<IPublisherListener> counter(new Listener([&](const std::string &) { ++heard; }));
    sptr<IPublisherListener> once;
    once.reset(new Listener([&](const std::string &) {
        EXPECT_EQ(kit.RegisterPublisherListener(otherTopic, counter), 0);
        EXPECT_EQ(kit.PublishMessage(otherTopic, "here"), 0);
        EXPECT_EQ(OnThread([&] { return kit.PublishMessage(otherTopic, "on another thread"); }), 0);
        EXPECT_EQ(kit.UnregisterPublisherListener(topic, once), 0);
    }));
    ASSERT_EQ(kit.RegisterPublisherListener(topic, once), 0);
    EXPECT_EQ(kit.PublishMessage(topic, "first"), 0);
    EXPECT_EQ(kit.PublishMessage(topic, "reaches nobody"), 0);
    EXPECT_EQ(heard, 2);

    constexpr int rounds = 500;
    const auto work = [&] {
        const sptr<IPublisherListener> own(new Listener([](const std::string &) {}));
        for (int round = 0; round < rounds; ++round) {
            EXPECT_EQ(kit.RegisterPublisherListener(otherTopic, own), 0);
            EXPECT_EQ(kit.PublishMessage(otherTopic, ""), 0);
            EXPECT_EQ(kit.UnregisterPublisherListener(otherTopic, own), 0);
        }
    };
    std::thread threads[] = {std::thread(work), std::thread(work), std::thread(work)};
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(heard, 2 + 3 * rounds);
    EXPECT_EQ(kit.UnregisterPublisherListener(otherTopic, counter), 0);
}

TEST(HostQos, SchedulesAnotherThreadAndResetsItOrLeavesItAlone)
{
    const pid_t tid = getpid();  // of the thread that runs the tests
    const std::pair<int, int> usual = SchedulingOf(tid);
    const auto set = [&](int level) {
        return QOS::SetQosForOtherThread(QOS::QosLevel{level}, tid);
    };
    const std::pair<int, int> levels[] = {{SCHED_BATCH, 0},   {SCHED_BATCH, 0},   {SCHED_OTHER, 0}, {SCHED_OTHER, -5},
                                          {SCHED_OTHER, -10}, {SCHED_OTHER, -15}, {SCHED_BATCH, -5}};
    int level = 0;
    for (const auto &[policy, offset] : levels) {
        ++level;
        const std::pair<int, int> wanted(policy, usual.second + offset);
        const bool isGranted = OnThread([&] { return setpriority(PRIO_PROCESS, 0, wanted.second) == 0; });
        EXPECT_EQ(OnThread([&] { return set(level); }), isGranted ? 0 : -1) << level;
        EXPECT_EQ(SchedulingOf(tid), isGranted ? wanted : usual) << level;
        EXPECT_EQ(OnThread([&] { return QOS::ResetQosForOtherThread(tid); }), 0);
        EXPECT_EQ(SchedulingOf(tid), usual);
    }
    for (int bad : {INT_MIN, -1, 0, 8, INT_MAX}) {
        EXPECT_EQ(set(bad), -1) << bad;
    }
}

TEST(HostQos, RefusesThreadsThatTheProcessDoesNotHave)
{
    const pid_t otherProcess = fork();
    if (otherProcess == 0) {
        pause();
        _exit(0);
    }
    for (pid_t tid : {INT_MIN, -1, 0, INT_MAX, otherProcess}) {
        EXPECT_EQ(QOS::SetQosForOtherThread(QOS::QosLevel::QOS_BACKGROUND, tid), -1) << tid;
        EXPECT_EQ(QOS::ResetQosForOtherThread(tid), -1) << tid;
    }
    kill(otherProcess, SIGKILL);
    waitpid(otherProcess, nullptr, 0);
}

TEST(HostConcurrentTask, RequestAuthWritesThePairsInTheOrderOfTheirKeys)
{
    static std::vector<std::string> lines;
    LOG_SetCallback([](const LogType type, const LogLevel level, unsigned int, const char *tag, const char *text) {
        lines.push_back(std::to_string(type) + std::to_string(level) + tag + ": " + text);
    });
    auto &client = ConcurrentTask::ConcurrentTaskClient::GetInstance();
    client.RequestAuth({{"uid", "%s"}, {"pid", "4711"}, {"a", ""}, {"d", "1"}, {"c", "2"}, {"b", "3"}});
    client.RequestAuth({});
    LOG_SetCallback(nullptr);
    const std::vector<std::string> expected = {"34CONCURRENT_TASK: RequestAuth a= b=3 c=2 d=1 pid=4711 uid=%s",
                                               "34CONCURRENT_TASK: RequestAuth"};
    EXPECT_EQ(lines, expected);
}
