// SPDX-License-Identifier: Apache-2.0

#include "ostra_context.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <map>
#include <set>
#include <thread>
#include <vector>

#include "ostra_constants.h"
#include "support/json_fault.h"
#include "support/log_recorder.h"
#include "support/platform_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using Messages = std::vector<std::string>;

Messages Taken()
{
    return PlatformRecorder::GetInstance().Take();
}

LogLine Counted(int count)
{
    return InfoLine("PublishMessage", "Source device PublishMessage, waitNotify num " + std::to_string(count));
}

const LogLine PUBLISHED = InfoLine("PublishMessage", "PublishMessage.");

TEST(Context, PublishesTheLastEventOfEachDeviceInOrder)
{
    OstraContext &context = OstraContext::GetInstance();
    EXPECT_EQ(&context, &OstraContext::GetInstance());
    Taken();  // starts to listen
    LogRecorder log;
    context.AddWaitNotify("B", ISOMERISM_CONNECT);
    context.AddWaitNotify("\xE9", "");
    context.AddWaitNotify("A\"\\\n\x01", "e\"");
    context.AddWaitNotify("B", ISOMERISM_DISCONNECT);
    context.AddWaitNotify("", ISOMERISM_CONNECT);
    EXPECT_TRUE(log.Take().empty());
    context.PublishMessage();
    EXPECT_EQ(Taken(), (Messages{R"(8 {"dev_id":"","isomerism_event":"isomerism_connect"})",
                                 R"(8 {"dev_id":"A\"\\\n\u0001","isomerism_event":"e\""})",
                                 R"(8 {"dev_id":"B","isomerism_event":"isomerism_disconnect"})",
                                 "8 {\"dev_id\":\"\xE9\",\"isomerism_event\":\"\"}"}));
    EXPECT_EQ(log.Take(), (LogLines{Counted(4), PUBLISHED, PUBLISHED, PUBLISHED, PUBLISHED}));
    context.PublishMessage();
    EXPECT_TRUE(Taken().empty());
    EXPECT_EQ(log.Take(), (LogLines{Counted(0)}));
}

TEST(Context, FailedAllocationKeepsTheWholeQueue)
{
    OstraContext &context = OstraContext::GetInstance();
    LogRecorder log;
    const Messages all = {R"(8 {"dev_id":"A","isomerism_event":"1"})", R"(8 {"dev_id":"B","isomerism_event":"2"})"};
    const LogLine noObject = ErrorLine("PublishMessage", "PublishMessage, cJSON jsonObj is nullptr");
    const LogLine noText = ErrorLine("PublishMessage", "PublishMessage, cJSON_PrintUnformatted failed");
    std::vector<LogLines> outcomes;  // without repetitions
    for (int failing = 0;; ++failing) {
        context.AddWaitNotify("A", "1");
        context.AddWaitNotify("B", "2");
        {
            const JsonFault fault(failing);
            context.PublishMessage();
            if (!fault.Struck()) {
                break;
            }
        }
        const LogLines lines = log.Take();
        if (outcomes.empty() || lines != outcomes.back()) {
            outcomes.push_back(lines);
        }
        const Messages first = Taken();
        ASSERT_EQ(first, Messages(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(first.size())));
        context.PublishMessage();
        ASSERT_EQ(Taken(), all) << failing;
        log.Take();
    }
    EXPECT_EQ(outcomes, (std::vector<LogLines>{{Counted(2), noObject},
                                               {Counted(2), noText},
                                               {Counted(2), PUBLISHED, noObject},
                                               {Counted(2), PUBLISHED, noText}}));
    EXPECT_EQ(Taken(), all);
}

TEST(Context, PublishesEachDeviceOnceUnderManyThreads)
{
    constexpr int threadCount = 4;
    constexpr int deviceCount = 200;
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([i] {
            for (int j = 0; j < deviceCount; ++j) {
                OstraContext::GetInstance().AddWaitNotify(std::to_string(i) + "." + std::to_string(j), "event");
                if (j % 7 == i) {
                    OstraContext::GetInstance().PublishMessage();
                }
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    OstraContext::GetInstance().PublishMessage();
    const Messages published = Taken();
    EXPECT_EQ(published.size(), size_t{threadCount * deviceCount});
    EXPECT_EQ(std::set<std::string>(published.begin(), published.end()).size(), published.size());
}

// A listener may let another thread queue a notification, as long as it does not wait for it.
TEST(Context, OtherThreadsMayQueueWhileAListenerRuns)
{
    struct Queuing : IPublisherListener {
        void OnMessage(const DHTopic /* topic */, const std::string & /* message */) override
        {
            EXPECT_EQ(log.Take().back(), PUBLISHED);
            EXPECT_EQ(OstraContext::GetInstance().GetDHFwkKit(), kit);  // takes no lock
            queued =
                std::async(std::launch::async, [] { OstraContext::GetInstance().AddWaitNotify("later", "event"); });
            EXPECT_EQ(queued.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        }

        LogRecorder log;
        std::shared_ptr<DistributedHardwareFwkKit> kit = OstraContext::GetInstance().GetDHFwkKit();
        std::future<void> queued;
    };
    constexpr DHTopic topic = static_cast<DHTopic>(8);
    const sptr<Queuing> queuing = new Queuing();
    ASSERT_EQ(queuing->kit->RegisterPublisherListener(topic, queuing), 0);
    OstraContext::GetInstance().AddWaitNotify("first", "event");
    OstraContext::GetInstance().PublishMessage();
    queuing->queued.get();
    ASSERT_EQ(queuing->kit->UnregisterPublisherListener(topic, queuing), 0);
    EXPECT_EQ(Taken().size(), 1U);
    OstraContext::GetInstance().PublishMessage();
    EXPECT_EQ(Taken(), (Messages{R"(8 {"dev_id":"later","isomerism_event":"event"})"}));
}

TEST(Context, HasItsPublishedNames)
{
    std::map<DHType, std::string> types;  // each with its display name, where there is one
    for (const auto *names : {&DHTYPE_NAME_MAP, &DHTYPE_DISPLAY_NAME_MAP}) {
        for (const auto &[type, name] : *names) {
            types[type] += " " + name;
        }
    }
    std::string joined;
    for (const auto &[type, names] : types) {
        joined += std::to_string(static_cast<uint32_t>(type)) + names + ", ";
    }
    EXPECT_EQ(joined,
              "1 CAMERA Camera, 2 AUDIO, 8 SCREEN Screen, 16 GPS, 32 INPUT Input, 64 HFP, 128 A2D, "
              "256 VIRMODEM_AUDIO, 512 MODEM, ");
    joined = HISTM_VID_ENC + HISTM_VID_DEC + HISTM_AUD_ENC + HISTM_AUD_DEC + DCAMERA_SERVICE_NAME +
             DSCREEN_SERVICE_NAME + DAUDIO_DMIC_SERVICE_NAME + DAUDIO_DSPEAKER_SERVICE_NAME + DCALL_DMIC_SERVICE_NAME +
             DCALL_DSPEAKER_SERVICE_NAME + DMIC_STREAM + DSCREEN_STREAM + DSPEAKER_STREAM + DCAMERA_STREAM +
             DCAMERA_PICTURE + DHARDWARE_PREFIX + DAUDIO_PKG_NAME + DCALL_PKG_NAME + DCAMERA_PKG_NAME +
             DSCREEN_PKG_NAME + MIME_VIDEO_RAW + MIME_VIDEO_AVC + MIME_VIDEO_HEVC + PIXEL_FORMAT_NV12 +
             PIXEL_FORMAT_NV21 + PIXEL_FORMAT_JPEG + PIXEL_FORMAT_YUVI420 + PIXEL_FORMAT_RGBA8888;
    EXPECT_EQ(joined,
              "histmVidEnchistmVidDechistmAudEnchistmAudDecohos.dhardware.dcameraohos.dhardware.dscreen"
              "ohos.dhardware.daudio.dmicohos.dhardware.daudio.dspeakerohos.dhardware.dcall.dmic"
              "ohos.dhardware.dcall.dspeakerdmic_streamdscreen_streamdspeaker_streamdcamera_streamdcamera_picture"
              "ohos.dhardwareohos.dhardware.daudioohos.dhardware.dcallohos.dhardware.dcameraohos.dhardware.dscreen"
              "video/rawvideo/avcvideo/hevcnv12nv21jpegyuvi420rgba8888");
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
