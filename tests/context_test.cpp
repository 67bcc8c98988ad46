// SPDX-License-Identifier: Apache-2.0

#include "ostra_context.h"

#include <chrono>
#include <future>
#include <map>
#include <set>
#include <thread>

#include "ostra_constants.h"
#include "support/json_fault.h"
#include "support/session.h"

const char *const SESSIONS =
#include "sessions/context_test.txt"
    ;

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

class Context : public Session {
protected:
    void TearDown() override
    {
        g_whilePublishing = nullptr;
        Session::TearDown();
    }

    OstraContext &context_ = OstraContext::GetInstance();
};

TEST_F(Context, PublishesTheLastEventOfEachDeviceInOrder)
{
    SHOW(&context_ == &OstraContext::GetInstance(), context_.GetDHFwkKit().get());
    CALL(context_.AddWaitNotify("B", ISOMERISM_CONNECT));
    CALL(context_.AddWaitNotify("\xE9", ""));
    CALL(context_.AddWaitNotify("A\"\\\n\x01", "e\""));
    CALL(context_.AddWaitNotify("B", ISOMERISM_DISCONNECT));
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

TEST_F(Context, WhatIsQueuedWhilePublishingGoesOutWithTheNextCall)
{
    std::future<void> queuing;
    g_whilePublishing = [&](const std::string & /* message */) {
        queuing = std::async(std::launch::async, [this] { context_.AddWaitNotify("later", "event"); });
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
    constexpr int threadCount = 4;
    constexpr int deviceCount = 200;
    std::multiset<std::string> published;
    g_whilePublishing = [&](const std::string &message) {
        published.insert(message);
    };
    Unrecorded([this] {
        std::vector<std::thread> threads;
        for (int i = 0; i < threadCount; ++i) {
            threads.emplace_back([this, i] {
                for (int j = 0; j < deviceCount; ++j) {
                    context_.AddWaitNotify(std::to_string(i) + "." + std::to_string(j), "event");
                    if (j % 7 == i) {
                        context_.PublishMessage();
                    }
                }
            });
        }
        for (std::thread &thread : threads) {
            thread.join();
        }
        context_.PublishMessage();
    });
    EXPECT_EQ(published.size(), size_t{threadCount * deviceCount});
    EXPECT_EQ(std::set<std::string>(published.begin(), published.end()).size(), published.size());
}

TEST_F(Context, HasItsPublishedNames)
{
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
