// SPDX-License-Identifier: Apache-2.0

#include "ostra_context.h"

#include <chrono>
#include <future>
#include <stdexcept>

#include "ostra_constants.h"
#include "support/golden_test.h"
#include "support/json_fault.h"

const char *const GOLDEN_FILE =
#include "ostra_context_test.txt"
    ;

namespace OHOS::DistributedHardware {
namespace {

std::function<void(const std::string &message)> g_onPublish;

}  // namespace

// Replaces the framework's, which delivers later, from another process.
int32_t DistributedHardwareFwkKit::PublishMessage(const DHTopic topic, const std::string &message)
{
    GoldenTest::Record("topic " + std::to_string(static_cast<uint32_t>(topic)) + " " + message);
    if (g_onPublish != nullptr) {
        g_onPublish(message);
    }
    return -1;  // ignored
}

namespace OstraAdapter {
namespace {

class OstraContextTest : public GoldenTest {
protected:
    void TearDown() override
    {
        g_onPublish = nullptr;
        GoldenTest::TearDown();
    }

    // Publishes the queue, and returns the messages.
    std::vector<std::string> Published()
    {
        std::vector<std::string> published;
        g_onPublish = [&published](const std::string &message) {
            published.push_back(message);
        };
        Unrecorded([this] { context_.PublishMessage(); });
        g_onPublish = nullptr;
        return published;
    }

    OstraContext &context_ = OstraContext::GetInstance();
    const std::vector<std::string> first_ = {R"({"dev_id":"1","isomerism_event":"first"})"};
};

TEST_F(OstraContextTest, PublishesTheLastEventOfEachDeviceInOrder)
{
    EXPECT_NE(context_.GetDHFwkKit(), nullptr);
    EXPECT_EQ(context_.GetDHFwkKit(), OstraContext::GetInstance().GetDHFwkKit());
    context_.AddWaitNotify("d2", ISOMERISM_CONNECT);
    context_.AddWaitNotify("\xE9", "");
    context_.AddWaitNotify("A\"\\\n\x01", "e\"");
    context_.AddWaitNotify("d2", ISOMERISM_DISCONNECT);
    context_.AddWaitNotify("", ISOMERISM_CONNECT);
    CALL(context_.PublishMessage());
    CALL(context_.PublishMessage());
}

TEST_F(OstraContextTest, KeepsTheQueueIfAllocationFails)
{
    const JsonFault fault;
    EachFault([this] {
        context_.AddWaitNotify("A", "1");
        context_.AddWaitNotify("B", "2");
        int count = 0;
        g_onPublish = [&count](const std::string & /* message */) {
            ++count;
            EXPECT_EQ(JsonFault::LiveBlocks(), 0) << "is not released before the framework is called";
        };
        CALL(context_.PublishMessage());
        EXPECT_EQ(Published().size(), count < 2 ? 2u : 0u);
    });
}

TEST_F(OstraContextTest, PublishesWhatIsQueuedMeanwhileWithTheNextCall)
{
    std::future<void> queuing;
    g_onPublish = [&](const std::string & /* message */) {
        std::promise<void> started;
        queuing = std::async(std::launch::async, [&started, this] {
            started.set_value();
            context_.AddWaitNotify("later", "event");
        });
        started.get_future().wait();
        EXPECT_EQ(queuing.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        EXPECT_NE(context_.GetDHFwkKit(), nullptr);  // takes no lock
    };
    context_.AddWaitNotify("1", "first");
    CALL(context_.PublishMessage());
    queuing.get();
    EXPECT_EQ(Published(), std::vector<std::string>{R"({"dev_id":"later","isomerism_event":"event"})"});
}

// A lock that is still held makes the test time out.
TEST_F(OstraContextTest, KeepsTheQueueIfAListenerThrows)
{
    context_.AddWaitNotify("1", "first");
    g_onPublish = [](const std::string & /* message */) {
        throw std::runtime_error("listener");
    };
    Unrecorded([this] { EXPECT_THROW(context_.PublishMessage(), std::runtime_error); });
    EXPECT_EQ(Published(), first_);
    EXPECT_TRUE(Published().empty());
}

TEST_F(OstraContextTest, QueuesANotificationWholeOrNotAtAll)
{
    const std::string longEvent(100, 'x');
    for (const std::string device : {"1", "2"}) {
        context_.AddWaitNotify("1", "first");
        EXPECT_GT(FailEachAllocation([&] { context_.AddWaitNotify(device, longEvent); },
                                     [&] {
                                         EXPECT_EQ(Published(), first_);
                                         context_.AddWaitNotify("1", "first");
                                     }),
                  0u);
        EXPECT_EQ(Published().back(), R"({"dev_id":")" + device + R"(","isomerism_event":")" + longEvent + "\"}");
    }
}

}  // namespace
}  // namespace OstraAdapter
}  // namespace OHOS::DistributedHardware
