// SPDX-License-Identifier: Apache-2.0
//
// Counted pointers, and the listeners of the distributed hardware SDK, which are held by them.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "distributed_hardware_fwk_kit.h"
#include "errors.h"
#include "nocopyable.h"

using namespace OHOS;
using namespace OHOS::DistributedHardware;

namespace {

std::atomic<int> alive{0};

struct Object : virtual RefBase {
    explicit Object(int number = 0) : value(number)
    {
        ++alive;
    }
    Object(const Object &other) : RefBase(other), value(other.value)
    {
        ++alive;
    }
    ~Object() override
    {
        --alive;
    }
    int value;
};

struct Derived : Object {
    using Object::Object;
    DISALLOW_COPY_AND_MOVE(Derived);
};
static_assert(!std::is_copy_constructible_v<Derived> && !std::is_move_constructible_v<Derived> &&
              !std::is_copy_assignable_v<Derived> && !std::is_move_assignable_v<Derived>);
static_assert(SUCCEEDED(ERR_OK) && FAILED(ErrCode{-1}) && !FAILED(0) && !SUCCEEDED(1));

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
        EXPECT_TRUE(first == second && fourth == raw && nullptr == third && third == nullptr && !(first != second));
        EXPECT_EQ(raw->GetSptrRefCount(), 3);
    }
    EXPECT_EQ(raw->GetSptrRefCount(), 1);
    const sptr<Derived> derived = sptr<Derived>::MakeSptr(2);
    first = derived;  // ends the first object
    EXPECT_EQ(alive, 1);
    const Object copy(*first);  // counts for itself
    EXPECT_EQ(std::pair(copy.value, derived->GetSptrRefCount()), std::pair(2, 2));
    first = new Object(3);
    first->IncStrongRef(nullptr);
    Object *const kept = first.GetRefPtr();
    first = nullptr;
    EXPECT_TRUE(!first && kept->GetSptrRefCount() == 1 && (*derived).value == 2);
    kept->DecStrongRef(nullptr);
    EXPECT_EQ(alive, 2);  // derived and its copy
    const std::map<sptr<Object>, int> keys = {{derived, 1}};
    EXPECT_EQ(keys.count(derived), 1u);
}

TEST(HostRefBase, AWeakPointerTellsWhetherTheObjectLives)
{
    sptr<Object> strong = new Object(5);
    wptr<Object> weak = strong;
    const wptr<Object> copy = weak;
    EXPECT_EQ(weak.promote()->value, 5);
    EXPECT_EQ(strong->GetSptrRefCount(), 1);
    strong = nullptr;
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(weak.promote() == nullptr && copy.promote() == nullptr && wptr<Object>().promote() == nullptr);
    {
        Object uncounted;
        weak = &uncounted;
        EXPECT_EQ(uncounted.GetSptrRefCount(), 0);
    }
    EXPECT_FALSE(weak.promote());
    const sptr<Derived> derived = new Derived(7);
    weak = derived;
    EXPECT_EQ(weak.promote(), derived);
    weak = new Object(6);  // not counted yet: the first strong pointer takes it
    EXPECT_EQ(weak.promote()->value, 6);
    EXPECT_FALSE(weak.promote());
}

// No promotion revives an object that another thread ends.
TEST(HostRefBase, CountsFromAllThreads)
{
    for (int round = 0; round < 200; ++round) {
        sptr<Object> strong = new Object(round);
        const wptr<Object> weak = strong;
        std::vector<std::thread> threads;
        for (int i = 0; i < 3; ++i) {
            threads.emplace_back([weak, round] {
                for (int promotion = 0; promotion < 20; ++promotion) {
                    const sptr<Object> held = weak.promote();
                    EXPECT_TRUE(!held || sptr<Object>(held)->value == round);
                }
            });
        }
        strong = nullptr;
        for (std::thread &thread : threads) {
            thread.join();
        }
        EXPECT_EQ(alive, 0);
    }
}

TEST(HostPublisher, ReachesTheListenersOfTheTopicThroughAnyKit)
{
    constexpr DHTopic topic{8};
    constexpr DHTopic unused{UINT32_MAX};
    std::string heard;
    sptr<IPublisherListener> first = new Listener([&](const std::string &text) { heard += "1st " + text + ' '; });
    const sptr<IPublisherListener> second = new Listener([&](const std::string &text) { heard += "2nd " + text; });
    DistributedHardwareFwkKit kit;
    EXPECT_EQ(DistributedHardwareFwkKit().RegisterPublisherListener(topic, first), 0);
    EXPECT_EQ(DistributedHardwareFwkKit().RegisterPublisherListener(topic, second), 0);
    for (const auto &[at, bad] : {std::pair(topic, first), {topic, nullptr}, {DHTopic::TOPIC_MIN, first}}) {
        EXPECT_LT(kit.RegisterPublisherListener(at, bad), 0);
    }
    EXPECT_LT(kit.PublishMessage(DHTopic::TOPIC_MIN, "m"), 0);
    EXPECT_LT(kit.UnregisterPublisherListener(unused, second), 0);
    EXPECT_LT(kit.UnregisterPublisherListener(unused, nullptr), 0);
    EXPECT_EQ(kit.PublishMessage(unused, "nobody listens") + kit.PublishMessage(topic, "m"), 0);
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, first), 0);
    EXPECT_EQ(first->GetSptrRefCount(), 1);
    EXPECT_LT(kit.UnregisterPublisherListener(topic, first), 0);
    EXPECT_EQ(kit.PublishMessage(topic, "n"), 0);
    EXPECT_EQ(heard, "1st 8m 2nd 8m2nd 8n");
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, second), 0);
}

TEST(HostPublisher, ListenersMayUseTheKitThrowAndOtherThreadsMayPublishMeanwhile)
{
    constexpr DHTopic topic{20};
    DistributedHardwareFwkKit kit;
    std::atomic<int> heard{0};
    const auto work = [&] {
        const sptr<IPublisherListener> own = new Listener([&](const std::string &) { ++heard; });
        for (int round = 0; round < 300; ++round) {
            EXPECT_EQ(kit.RegisterPublisherListener(DHTopic{21}, own), 0);
            EXPECT_EQ(kit.PublishMessage(DHTopic{21}, ""), 0);
            EXPECT_EQ(kit.UnregisterPublisherListener(DHTopic{21}, own), 0);
        }
    };
    sptr<IPublisherListener> once = new Listener([&](const std::string &) {
        std::thread other(work);
        work();
        other.join();
        throw std::runtime_error("from a listener");
    });
    ASSERT_EQ(kit.RegisterPublisherListener(topic, once), 0);
    EXPECT_THROW(kit.PublishMessage(topic, "first"), std::runtime_error);
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, once), 0);
    EXPECT_EQ(kit.PublishMessage(topic, "reaches nobody"), 0);
    EXPECT_EQ(once->GetSptrRefCount(), 1);
    EXPECT_GE(heard, 2 * 300);
}
