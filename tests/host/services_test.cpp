// SPDX-License-Identifier: Apache-2.0
//
// Reference-counted pointers, the distributed hardware SDK and the SoftBus client.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <utility>

#include "distributed_hardware_fwk_kit.h"
#include "errors.h"
#include "nocopyable.h"
#include "softbus_bus_center.h"

using namespace OHOS;
using namespace OHOS::DistributedHardware;
using Kit = DistributedHardwareFwkKit;

static_assert(SUCCEEDED(ERR_OK) && FAILED(ERR_OK - 1));

namespace {

const auto token = std::make_shared<int>();  // referenced by every live object

struct Object : virtual RefBase {
    std::shared_ptr<int> reference = token;
};

std::string g_received;
std::map<std::string, std::string> g_idFiles;  // content of the files; "locked" fails to open, "unreadable" to be read
std::string g_hostName;

struct Listener : Object, IPublisherListener {
    explicit Listener(const char *name) : prefix(name)
    {
    }
    ~Listener() override
    {
        Kit().UnregisterPublisherListener(DHTopic{8}, this);  // does not destroy the object again
    }
    DISALLOW_COPY_AND_MOVE(Listener);
    void OnMessage(const DHTopic topic, const std::string &message) override
    {
        g_received += prefix + std::to_string(static_cast<uint32_t>(topic)) + message + ' ';
        if (message == "leave") {
            EXPECT_EQ(Kit().UnregisterPublisherListener(topic, this), 0);
        }
    }
    std::string prefix;
};

}  // namespace

TEST(RefBase, CountsReferences)
{
    sptr<Object> first = new Listener("");
    {
        const sptr<Object> second(first.GetRefPtr());
        sptr<Object> third = first;
        const sptr<Object> fourth = std::move(third);
        EXPECT_EQ(third, nullptr);
        EXPECT_EQ(fourth, second);
        EXPECT_EQ(first->GetSptrRefCount(), 3);
    }
    EXPECT_EQ(first->GetSptrRefCount(), 1);
    const sptr<Listener> derived = sptr<Listener>::MakeSptr("");
    first = derived;  // destroys the first object
    EXPECT_EQ(token.use_count(), 1 + 1);
    Object copy(*first);  // has its own count
    copy = *first;
    EXPECT_EQ(copy.GetSptrRefCount(), 0);
    EXPECT_EQ(derived->GetSptrRefCount(), 2);
    first = nullptr;
    EXPECT_FALSE(first);
    EXPECT_EQ(derived->GetSptrRefCount(), 1);
}

TEST(RefBase, CountIsThreadSafe)
{
    const sptr<Object> object = new Object();
    const auto copyRepeatedly = [&object] {
        for (int i = 0; i < 1000000; ++i) {
            const sptr<Object> copy = object;
        }
    };
    std::thread other(copyRepeatedly);
    copyRepeatedly();
    other.join();
    EXPECT_EQ(object->GetSptrRefCount(), 1);
}

TEST(FwkKit, PublishesToTheListenersOfTheTopic)
{
    constexpr DHTopic topic{8};
    const sptr<IPublisherListener> first = new Listener("1st ");
    const sptr<IPublisherListener> second = new Listener("2nd ");
    Kit kit;
    EXPECT_EQ(Kit().RegisterPublisherListener(topic, first), 0);
    EXPECT_EQ(Kit().RegisterPublisherListener(topic, second), 0);
    for (const auto &[at, listener] : {std::pair(topic, first), {topic, nullptr}, {DHTopic::TOPIC_MIN, second}}) {
        EXPECT_EQ(kit.RegisterPublisherListener(at, listener), -1);
    }
    EXPECT_EQ(kit.PublishMessage(DHTopic::TOPIC_MIN, "m"), -1);
    EXPECT_EQ(kit.PublishMessage(DHTopic{UINT32_MAX}, "m"), 0);
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, first), 0);
    EXPECT_EQ(kit.PublishMessage(topic, "m"), 0);
    EXPECT_EQ(kit.RegisterPublisherListener(topic, first), 0);
    EXPECT_EQ(kit.PublishMessage(topic, "leave"), 0);
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, first), -1);
    EXPECT_EQ(std::exchange(g_received, ""), "2nd 8m 2nd 8leave 1st 8leave ");
    EXPECT_EQ(second->GetSptrRefCount(), 1);
}

// Replace the functions of the C library.
extern "C" FILE *fopen(const char *path, const char *)
{
    errno = g_idFiles.count(path) == 0 ? ENOENT : EACCES;
    std::string &content = g_idFiles[path];
    const bool isOpened = errno == EACCES && content != "locked";
    return isOpened ? fmemopen(content.data(), content.size(), content == "unreadable" ? "w" : "r") : nullptr;
}

extern "C" int gethostname(char *name, size_t size) noexcept
{
    const int length = std::snprintf(name, size, "%s", g_hostName.c_str());
    return length > 0 && static_cast<size_t>(length) < size ? 0 : -1;
}

TEST(SoftBus, IdentifiesTheLocalNode)
{
    constexpr char first[] = "/etc/machine-id";
    constexpr char second[] = "/var/lib/dbus/machine-id";
    const std::string longest(64, 'h');
    using Result = std::tuple<int32_t, std::string, std::string, int>;
    // HMAC-SHA-256, which must not change: peers identify this machine by it.
    const std::string idOfMachine = "ba69e395c3d99af5eb2f15cd89311ae60664bced981eb5a40ffacf263e759636";
    const std::string idOfHost = "986c165d586b12c90021b8237569dc019d8b5ed80fa3b360a024809e3b0b7de3";
    const Result unchanged = {-2, "unchanged", "unchanged", 7};
    const std::tuple<std::map<std::string, std::string>, std::string, Result> cases[] = {
        {{{first, "0123456789abcdef0123456789abcdef\n"}, {second, "other"}}, longest, {0, idOfMachine, longest, 0}},
        {{{first, "\n"}, {second, "0123456789abcdef0123456789abcdef"}}, "host", {0, idOfMachine, "host", 0}},
        {{}, "host", {0, idOfHost, "host", 0}},
        {{{first, ""}}, "host", {0, idOfHost, "host", 0}},
        {{{first, "locked"}, {second, "other"}}, "host", unchanged},
        {{{first, "unreadable"}, {second, "other"}}, "host", unchanged},
        {{{first, "id"}}, "", unchanged},
    };
    for (const auto &[files, hostName, expected] : cases) {
        g_idFiles = files;
        g_hostName = hostName;
        NodeBasicInfo info = {"unchanged", "unchanged", 7};
        const int32_t result = GetLocalNodeDeviceInfo("pkg", &info);
        EXPECT_EQ(Result(result, info.networkId, info.deviceName, info.deviceTypeId), expected);
    }
    NodeBasicInfo info{};
    EXPECT_EQ(GetLocalNodeDeviceInfo(nullptr, &info), -1);
    EXPECT_EQ(GetLocalNodeDeviceInfo("pkg", nullptr), -1);
}
