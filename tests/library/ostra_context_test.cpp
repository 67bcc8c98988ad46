// SPDX-License-Identifier: Apache-2.0

#include "ostra_context.h"

#include <chrono>
#include <future>

#include "ostra_constants.h"
#include "support/fault.h"
#include "support/golden_test.h"

#include "ostra_context_test.txt"

namespace OHOS::DistributedHardware {
namespace {

std::vector<std::string> g_published;
std::function<void()> g_onPublish;

}  // namespace

// Replaces the framework's function, which delivers asynchronously, from another process.
int32_t DistributedHardwareFwkKit::PublishMessage(const DHTopic topic, const std::string &message)
{
    GoldenTest::Record("topic " + std::to_string(static_cast<uint32_t>(topic)) + " " + message);
    g_published.push_back(message);
    if (g_onPublish != nullptr) {
        g_onPublish();
    }
    return -1;  // ignored
}

namespace OstraAdapter {
namespace {

class OstraContextTest : public GoldenTest {
protected:
    // Publishes the queue, and returns the messages.
    std::vector<std::string> Published()
    {
        g_onPublish = nullptr;
        g_published.clear();
        context_.PublishMessage();
        return std::exchange(g_published, {});
    }

    OstraContext &context_ = OstraContext::GetInstance();
    const std::vector<std::string> first_ = {R"({"dev_id":"1","isomerism_event":"first"})"};
};

TEST_F(OstraContextTest, PublishesTheLastEventOfEachDeviceInOrder)
{
    EXPECT_EQ(context_.GetDHFwkKit(), OstraContext::GetInstance().GetDHFwkKit());
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
    const auto queue = [this] {
        g_published.clear();
        context_.AddWaitNotify("A", "1");
        context_.AddWaitNotify("B", "2");
    };
    queue();
    EachFault([this] { CALL(context_.PublishMessage()); },
              [&] {
                  const size_t count = g_published.size();
                  EXPECT_EQ(Published().size(), count < 2 ? 2u : 0u);
                  queue();
              });
    Published();
}

TEST_F(OstraContextTest, ReleasesTheDocumentBeforeItPublishes)
{
    int64_t liveBlocks = 0;
    context_.AddWaitNotify("1", "first");
    g_onPublish = [&liveBlocks] {
        liveBlocks = LiveBlocks();
    };
    context_.PublishMessage();
    EXPECT_EQ(liveBlocks - LiveBlocks(), 2) << "more than the message and an entry of the queue";
    EXPECT_TRUE(Published().empty());
}

TEST_F(OstraContextTest, PublishesEventsQueuedDuringPublishNextTime)
{
    std::future<void> queuing;
    g_onPublish = [&] {
        std::promise<void> started;
        queuing = std::async(std::launch::async, [&started, this] {
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
    EXPECT_EQ(Published(), first_);
}

TEST_F(OstraContextTest, KeepsTheQueueIfQueueingFails)
{
    const std::string event(100, 'x');
    for (const std::string device : {"1", "2"}) {
        bool isQueued = false;
        context_.AddWaitNotify("1", "first");
        EachFault(
            [&] {
                context_.AddWaitNotify(device, event);
                isQueued = true;
            },
            [&] {
                const std::string last = R"({"dev_id":")" + device + R"(","isomerism_event":")" + event + "\"}";
                EXPECT_EQ(Published().back(), isQueued ? last : first_.back());
                if (!isQueued) {
                    context_.AddWaitNotify("1", "first");
                }
            });
    }
}

}  // namespace
}  // namespace OstraAdapter
}  // namespace OHOS::DistributedHardware
