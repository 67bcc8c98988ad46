// SPDX-License-Identifier: Apache-2.0
//
// What leads to other services: maps in parcels, notifications, scheduling.

#include <chrono>
#include <climits>
#include <future>
#include <map>
#include <thread>

#include "concurrent_task_client.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_constants.h"
#include "ostra_context.h"
#include "ostra_qos_adapter.h"
#include "qos.h"
#include "support/json_fault.h"
#include "support/session.h"

const char *const SESSIONS =
#include "bridge_test.txt"
    ;

// In place of the platform's functions: what reaches them, and results that no platform gives.
namespace OHOS::QOS {

int SetQosForOtherThread(enum QosLevel level, int tid)
{
    Session::Left("SetQosForOtherThread " + std::to_string(static_cast<int>(level)) + " " + std::to_string(tid));
    return -static_cast<int>(level) / 2 - 1;
}

int ResetQosForOtherThread(int tid)
{
    Session::Left("ResetQosForOtherThread " + std::to_string(tid));
    return tid / 2 + 1;
}

}  // namespace OHOS::QOS

namespace OHOS::ConcurrentTask {

void ConcurrentTaskClient::RequestAuth(const std::unordered_map<std::string, std::string> &mapPayload)
{
    for (const auto &[key, value] : mapPayload) {
        Session::Left(key + "=" + value);
    }
}

}  // namespace OHOS::ConcurrentTask

namespace OHOS::DistributedHardware {
namespace {

std::function<void(const std::string &message)> g_whilePublishing;

}  // namespace

// In place of the framework's: it would deliver later, from a process of its own.
int32_t DistributedHardwareFwkKit::PublishMessage(const DHTopic topic, const std::string &message)
{
    Session::Left("topic " + std::to_string(static_cast<uint32_t>(topic)) + " " + message);
    if (g_whilePublishing != nullptr) {
        g_whilePublishing(message);
    }
    return -1;  // nobody looks at it
}

namespace OstraAdapter {
namespace {

using Map = std::map<int32_t, std::string>;
using Qos = Session;
using Constants = Session;

class Context : public Session {
protected:
    void TearDown() override
    {
        g_whilePublishing = nullptr;
        Session::TearDown();
    }

    OstraContext &context_ = OstraContext::GetInstance();
};

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

TEST_F(Ipc, SkipsWhatItDoesNotAccept)
{
    Write(7, {"abc", "#v", "x1#v", "2147483648#v", "-99999999999#v", std::string(101, '0') + "#v", "-5#a#b"});
    Map map = {{1, "kept"}, {-5, "replaced"}};
    CALL(IpcUtils::UnMarshalling(parcel_, map));
    ShowMap(map);
}

TEST_F(Ipc, StopsAtWhatItCannotRead)
{
    Map map = {{1, "kept"}};
    Write(3, {"2#two", "3#three"});
    CALL(IpcUtils::UnMarshalling(parcel_, map));
    ShowMap(map);
}

TEST_F(Ipc, TakesTenThousandEntriesAndNoMore)
{
    Map map;
    while (map.size() < 10000) {
        map.emplace(static_cast<int32_t>(map.size()), "v");
    }
    CALL(IpcUtils::Marshalling(parcel_, map));
    Map read;
    Unrecorded([&] { EXPECT_TRUE(IpcUtils::UnMarshalling(parcel_, read)); });
    SHOW(read == map);
    map.emplace(-1, "v");
    CALL(IpcUtils::Marshalling(parcel_, map));
    Write(10001, {});
    CALL(IpcUtils::UnMarshalling(parcel_, map));
    SHOW(parcel_.GetReadableBytes(), map.size());
}

TEST_F(Ipc, KeepsWhatWasWrittenBeforeTheParcelIsFull)
{
    for (size_t room : {0U, 16U, 20U}) {
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

TEST_F(Context, PublishesTheLastEventOfEachDeviceInOrder)
{
    SHOW(&context_ == &OstraContext::GetInstance(), context_.GetDHFwkKit().get());
    SHOW(context_.GetDHFwkKit() == context_.GetDHFwkKit());
    CALL(context_.AddWaitNotify("d2", ISOMERISM_CONNECT));
    CALL(context_.AddWaitNotify("\xE9", ""));
    CALL(context_.AddWaitNotify("A\"\\\n\x01", "e\""));
    CALL(context_.AddWaitNotify("d2", ISOMERISM_DISCONNECT));
    CALL(context_.AddWaitNotify("", ISOMERISM_CONNECT));
    CALL(context_.PublishMessage());
    CALL(context_.PublishMessage());
}

TEST_F(Context, FailedAllocationKeepsTheWholeQueue)
{
    const JsonFault fault;
    EachFault([this] {
        context_.AddWaitNotify("A", "1");
        context_.AddWaitNotify("B", "2");
        CALL(context_.PublishMessage());
        std::vector<std::string> again;
        g_whilePublishing = [&again](const std::string &message) {
            again.push_back(message);
        };
        Unrecorded([this] { context_.PublishMessage(); });
        g_whilePublishing = nullptr;
        SHOW(again.size());
    });
}

TEST_F(Context, ReleasesAllJsonBeforeItCallsTheFramework)
{
    const JsonFault json;
    g_whilePublishing = [](const std::string & /* message */) {
        EXPECT_EQ(JsonFault::LiveBlocks(), 0);
    };
    context_.AddWaitNotify("A", "1");
    Unrecorded([this] { context_.PublishMessage(); });
}

TEST_F(Context, WhatIsQueuedWhilePublishingGoesOutWithTheNextCall)
{
    std::future<void> queuing;
    g_whilePublishing = [&](const std::string & /* message */) {
        std::promise<void> started;
        queuing = std::async(std::launch::async, [&started, this] {
            started.set_value();
            context_.AddWaitNotify("later", "event");
        });
        started.get_future().wait();
        queuing.wait_for(std::chrono::milliseconds(50));           // time to do harm
        Left("the kit is " + Text(context_.GetDHFwkKit().get()));  // needs no lock
    };
    context_.AddWaitNotify("first", "event");
    CALL(context_.PublishMessage());
    queuing.get();
    g_whilePublishing = nullptr;
    CALL(context_.PublishMessage());
}

TEST_F(Context, PublishesEachDeviceOnceUnderManyThreads)
{
    std::map<std::string, int> published;
    g_whilePublishing = [&](const std::string &message) {
        ++published[message];
    };
    const auto queue = [this](const std::string &prefix) {
        for (int i = 0; i < 200; ++i) {
            context_.AddWaitNotify(prefix + std::to_string(i), "event");
            if (i % 7 == 0) {
                context_.PublishMessage();
            }
        }
    };
    Unrecorded([&] {
        std::thread other(queue, "other");
        queue("own");
        other.join();
        context_.PublishMessage();
    });
    EXPECT_EQ(published.size(), 400U);
    for (const auto &[message, count] : published) {
        EXPECT_EQ(count, 1) << message;
    }
}

TEST_F(Qos, PassesArgumentsAndResultsThrough)
{
    CALL(SetQos(99, INT_MIN));
    CALL(SetQos(-5, INT_MAX));
    CALL(ResetQos(77));
    CALL(ResetQos(-9));
}

TEST_F(Qos, SendsTheProcessAsItIs)
{
    CALL(RequestAuth("4711"));
    CALL(RequestAuth(""));
    CALL(RequestAuth("%s"));
}

TEST_F(Constants, HaveTheirPublishedValues)
{
    SHOW(OSTRA_PKG_NAME, DH_ACCESS_TOKEN_PERMISSION, DH_SUCCESS_TEXT, DH_FAILED_TEXT, OSTRA_ADAPTER_INIT_TEXT,
         SEPARATOR, NUMBER_PATTERN, ISOMERISM_CHANGE, ISOMERISM_EVENT, ISOMERISM_CONNECT, ISOMERISM_DISCONNECT,
         DEV_ID_KEY, OSTRA_JSON_SUCCESS, OSTRA_JSON_CREATE_FAILED, OSTRA_JSON_ROOT_MISSING, OSTRA_JSON_STEP_FAILED,
         OSTRA_JSON_INPUT_INVALID);
    SHOW(HISTM_VID_ENC, HISTM_VID_DEC, HISTM_AUD_ENC, HISTM_AUD_DEC, DCAMERA_SERVICE_NAME, DSCREEN_SERVICE_NAME,
         DAUDIO_DMIC_SERVICE_NAME, DAUDIO_DSPEAKER_SERVICE_NAME, DCALL_DMIC_SERVICE_NAME, DCALL_DSPEAKER_SERVICE_NAME,
         DMIC_STREAM, DSCREEN_STREAM, DSPEAKER_STREAM, DCAMERA_STREAM, DCAMERA_PICTURE, DHARDWARE_PREFIX,
         DAUDIO_PKG_NAME, DCALL_PKG_NAME, DCAMERA_PKG_NAME, DSCREEN_PKG_NAME, MIME_VIDEO_RAW, MIME_VIDEO_AVC,
         MIME_VIDEO_HEVC, PIXEL_FORMAT_NV12, PIXEL_FORMAT_NV21, PIXEL_FORMAT_JPEG, PIXEL_FORMAT_YUVI420,
         PIXEL_FORMAT_RGBA8888);
    const auto list = [this](const std::string &title, const DHTypeNames &names) {
        Note(title);
        for (const auto &[type, name] : std::map<DHType, std::string>(names.begin(), names.end())) {
            Note("    " + std::to_string(static_cast<uint32_t>(type)) + " " + name);
        }
    };
    list("DHTYPE_NAME_MAP", DHTYPE_NAME_MAP);
    list("DHTYPE_DISPLAY_NAME_MAP", DHTYPE_DISPLAY_NAME_MAP);
}

}  // namespace
}  // namespace OstraAdapter
}  // namespace OHOS::DistributedHardware
