// SPDX-License-Identifier: Apache-2.0

#include "ostra_context.h"

#include <algorithm>
#include <chrono>
#include <future>

#include "hilog/log.h"
#include "ostra_constants.h"
#include "support/fault.h"
#include "support/golden_test.h"

#include "ostra_context_test.txt"

using namespace OHOS::DistributedHardware;
using namespace OHOS::DistributedHardware::OstraAdapter;

std::vector<std::string> g_published;
std::function<void()> g_onPublish = [] {
};

// Replaces the framework's function, which delivers asynchronously, from another process.
int32_t DistributedHardwareFwkKit::PublishMessage(const DHTopic topic, const std::string &message)
{
    GoldenTest::RecordEffect("topic " + std::to_string(static_cast<uint32_t>(topic)) + " " + message);
    g_published.push_back(message);
    g_onPublish();
    return -1;  // ignored
}

class OstraContextTest : public GoldenTest {
protected:
    // Publishes the queue, and returns the messages.
    std::vector<std::string> Published()
    {
        g_published.clear();
        context_.PublishMessage();
        return std::exchange(g_published, {});
    }

    // Replaces the queue.
    void Queue()
    {
        Published();
        context_.AddWaitNotify("1", "first");
        context_.AddWaitNotify("2", "second");
    }

    OstraContext &context_ = OstraContext::GetInstance();
};

TEST_F(OstraContextTest, PublishesTheLastEventOfEachDeviceInOrder)
{
    context_.AddWaitNotify("d2", ISOMERISM_CONNECT);
    context_.AddWaitNotify("\xE9", "");
    context_.AddWaitNotify("A\"\\\n\x01", "e\"");
    context_.AddWaitNotify("d2", ISOMERISM_DISCONNECT);
    context_.AddWaitNotify("", ISOMERISM_CONNECT);
    CALL(context_.PublishMessage());
    CALL(context_.PublishMessage());
}

// Allocations in the framework fail, too, as if a listener threw. If the lock is not released, the test times out.
TEST_F(OstraContextTest, KeepsTheQueueIfAllocationFails)
{
    Queue();
    EachFault([this] { CALL(context_.PublishMessage()); },
              [this] {
                  const size_t count = g_published.size();
                  EXPECT_EQ(Published().size(), count < 2 ? 2u : 0u);
                  Queue();
              });
    Published();
}

TEST_F(OstraContextTest, ReleasesTheDocumentBeforeItLogsAndPublishes)
{
    static int64_t maxLiveBlocks;
    LOG_SetCallback([](auto... /* arguments */) { maxLiveBlocks = std::max(maxLiveBlocks, LiveBlocks()); });
    context_.PublishMessage();  // the platform allocates at the first log line
    maxLiveBlocks = 0;
    const int64_t liveBlocks = LiveBlocks();
    context_.AddWaitNotify("1", "first");
    context_.PublishMessage();
    EXPECT_EQ(maxLiveBlocks, liveBlocks + 2) << "more than the message and an entry of the queue";
}

TEST_F(OstraContextTest, DefersEventsQueuedWhilePublishing)
{
    std::promise<void> started;
    std::future<void> queuing;
    g_onPublish = [&] {
        queuing = std::async(std::launch::async, [&] {
            started.set_value();
            context_.AddWaitNotify("1", "first");
        });
        started.get_future().wait();
        EXPECT_EQ(queuing.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        EXPECT_NE(context_.GetDHFwkKit(), nullptr);  // takes no lock
    };
    context_.AddWaitNotify("earlier", "event");
    context_.PublishMessage();
    queuing.get();
    g_onPublish = [] {
    };
    CALL(context_.PublishMessage());
}

TEST_F(OstraContextTest, LeavesTheQueueUnchangedIfQueueingFails)
{
    const std::string event(100, 'x');
    const std::string separator = "\",\"" + ISOMERISM_EVENT + "\":\"";
    for (const std::string device : {"2", "3"}) {
        bool isQueued = false;
        Queue();
        EachFault(
            [&] {
                isQueued = false;
                context_.AddWaitNotify(device, event);
                isQueued = true;
            },
            [&] {
                const std::string last = isQueued ? device + separator + event : "2" + separator + "second";
                EXPECT_EQ(Published().back(), "{\"" + DEV_ID_KEY + "\":\"" + last + "\"}");
                Queue();
            });
    }
    Published();
}
