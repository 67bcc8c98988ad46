// SPDX-License-Identifier: Apache-2.0
//
// Counted pointers, and the listeners of the distributed hardware SDK, which are held by them.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "distributed_hardware_fwk_kit.h"
#include "errors.h"
#include "nocopyable.h"

using namespace OHOS;
using namespace OHOS::DistributedHardware;

static_assert(SUCCEEDED(ERR_OK));
static_assert(FAILED(ERR_OK - 1));

namespace {

const auto token = std::make_shared<int>();  // held here and by every object

struct Object : virtual RefBase {
    explicit Object(int number = 0) : value(number)
    {
    }
    int value;
    std::shared_ptr<int> held = token;
};

struct Derived : Object {
    using Object::Object;
    DISALLOW_COPY_AND_MOVE(Derived);
};

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

}  // namespace

TEST(HostRefBase, PointersOfOneObjectShareItsCount)
{
    sptr<Object> first = new Derived(1);
    Object *const raw = first;
    {
        const sptr<Object> second(raw);
        sptr<Object> third = first;
        const sptr<Object> fourth = std::move(third);
        EXPECT_EQ(third, nullptr);
        EXPECT_EQ(fourth, raw);
        EXPECT_EQ(raw->GetSptrRefCount(), 3);
    }
    EXPECT_EQ(raw->GetSptrRefCount(), 1);
    const sptr<Derived> derived = sptr<Derived>::MakeSptr(2);
    first = derived;  // ends the first object
    EXPECT_EQ(token.use_count(), 1 + 1);
    const Object copy(*first);  // counts for itself
    EXPECT_EQ(copy.value, 2);
    EXPECT_EQ(derived->GetSptrRefCount(), 2);
    first = nullptr;
    EXPECT_FALSE(first);
    EXPECT_EQ(derived->GetSptrRefCount(), 1);
}

TEST(HostRefBase, AWeakPointerTellsWhetherTheObjectLives)
{
    sptr<Object> strong = new Object(5);
    wptr<Object> weak = strong;
    const wptr<Object> copy = weak;
    EXPECT_EQ(weak.promote()->value, 5);
    EXPECT_EQ(strong->GetSptrRefCount(), 1);
    strong = nullptr;
    EXPECT_EQ(token.use_count(), 1);
    EXPECT_FALSE(copy.promote());
    EXPECT_FALSE(wptr<Object>().promote());
    {
        Object uncounted;
        weak = &uncounted;
        EXPECT_EQ(uncounted.GetSptrRefCount(), 0);
    }
    EXPECT_FALSE(weak.promote());
    weak = new Derived(6);  // not counted yet: the first strong pointer takes it
    EXPECT_EQ(weak.promote()->value, 6);
    EXPECT_FALSE(weak.promote());
}

// No promotion revives an object that another thread ends.
TEST(HostRefBase, CountsFromAllThreads)
{
    for (int round = 0; round < 200; ++round) {
        sptr<Object> strong = new Object(round);
        std::vector<std::thread> threads;
        for (int i = 0; i < 3; ++i) {
            threads.emplace_back([weak = wptr<Object>(strong), round] {
                for (int promotion = 0; promotion < 20; ++promotion) {
                    const sptr<Object> held = weak.promote();
                    EXPECT_EQ(held ? held->value : round, round);
                }
            });
        }
        strong = nullptr;
        for (std::thread &thread : threads) {
            thread.join();
        }
        EXPECT_EQ(token.use_count(), 1);
    }
}

TEST(HostPublisher, ReachesTheListenersOfTheTopicThroughAnyKit)
{
    constexpr DHTopic topic{8};
    constexpr DHTopic unused{UINT32_MAX};
    std::string heard;
    const sptr<IPublisherListener> first = new Listener([&](const std::string &text) { heard += "1st " + text + ' '; });
    const sptr<IPublisherListener> second = new Listener([&](const std::string &text) { heard += "2nd " + text; });
    DistributedHardwareFwkKit kit;
    EXPECT_EQ(DistributedHardwareFwkKit().RegisterPublisherListener(topic, first), 0);
    EXPECT_EQ(DistributedHardwareFwkKit().RegisterPublisherListener(topic, second), 0);
    for (const auto &[at, bad] : {std::pair(topic, first), {topic, nullptr}, {DHTopic::TOPIC_MIN, first}}) {
        EXPECT_EQ(kit.RegisterPublisherListener(at, bad), -1);
    }
    EXPECT_EQ(kit.PublishMessage(DHTopic::TOPIC_MIN, "m"), -1);
    EXPECT_EQ(kit.UnregisterPublisherListener(unused, second), -1);
    EXPECT_EQ(kit.PublishMessage(unused, "nobody listens"), 0);
    EXPECT_EQ(kit.PublishMessage(topic, "m"), 0);
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, first), 0);
    EXPECT_EQ(first->GetSptrRefCount(), 1);
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, first), -1);
    EXPECT_EQ(kit.PublishMessage(topic, "n"), 0);
    EXPECT_EQ(heard, "1st 8m 2nd 8m2nd 8n");
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, second), 0);
}

TEST(HostPublisher, AListenerMayThrow)
{
    constexpr DHTopic topic{20};
    DistributedHardwareFwkKit kit;
    const sptr<IPublisherListener> thrower =
        new Listener([](const std::string &) { throw std::runtime_error("from a listener"); });
    ASSERT_EQ(kit.RegisterPublisherListener(topic, thrower), 0);
    EXPECT_THROW(kit.PublishMessage(topic, "m"), std::runtime_error);
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, thrower), 0);
    EXPECT_EQ(thrower->GetSptrRefCount(), 1);
}
