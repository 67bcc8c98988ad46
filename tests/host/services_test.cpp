// SPDX-License-Identifier: Apache-2.0
//
// Reference-counted pointers, the distributed hardware SDK and the SoftBus client.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "distributed_hardware_fwk_kit.h"
#include "errors.h"
#include "nocopyable.h"
#include "softbus_bus_center.h"

using namespace OHOS;
using namespace OHOS::DistributedHardware;

static_assert(SUCCEEDED(ERR_OK) && FAILED(ERR_OK - 1));

namespace {

const auto token = std::make_shared<int>();  // every live object holds a reference

struct Object : virtual RefBase {
    std::shared_ptr<int> held = token;
};

struct Derived : Object {
    Derived() = default;
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

TEST(RefBase, PointersShareTheCountOfTheObject)
{
    sptr<Object> first = new Derived();
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
    const sptr<Derived> derived = sptr<Derived>::MakeSptr();
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

TEST(FwkKit, PublishesToTheListenersOfTheTopic)
{
    constexpr DHTopic topic{8};
    constexpr DHTopic unused{UINT32_MAX};
    std::string heard;
    const sptr<IPublisherListener> first = new Listener([&](const std::string &text) { heard += "1st " + text + ' '; });
    const sptr<IPublisherListener> second = new Listener([&](const std::string &text) {
        heard += "2nd " + text;
        throw std::runtime_error("from a listener");
    });
    DistributedHardwareFwkKit kit;
    EXPECT_EQ(DistributedHardwareFwkKit().RegisterPublisherListener(topic, first), 0);
    EXPECT_EQ(DistributedHardwareFwkKit().RegisterPublisherListener(topic, second), 0);
    for (const auto &[at, bad] : {std::pair(topic, first), {topic, nullptr}, {DHTopic::TOPIC_MIN, first}}) {
        EXPECT_EQ(kit.RegisterPublisherListener(at, bad), -1);
    }
    EXPECT_EQ(kit.PublishMessage(DHTopic::TOPIC_MIN, "m"), -1);
    EXPECT_EQ(kit.UnregisterPublisherListener(unused, second), -1);
    EXPECT_EQ(kit.PublishMessage(unused, "unheard"), 0);
    EXPECT_THROW(kit.PublishMessage(topic, "m"), std::runtime_error);
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, second), 0);
    EXPECT_EQ(second->GetSptrRefCount(), 1);
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, second), -1);
    EXPECT_EQ(kit.PublishMessage(topic, "n"), 0);
    EXPECT_EQ(heard, "1st 8m 2nd 8m1st 8n ");
    EXPECT_EQ(kit.UnregisterPublisherListener(topic, first), 0);
}

namespace {

std::map<std::string, std::string> g_idFiles;  // content of the machine id files; "unreadable" fails to open
std::string g_hostName;

}  // namespace

// Replace the functions of the C library.
extern "C" FILE *fopen(const char *path, const char *mode)
{
    if (std::strstr(path, "machine-id") == nullptr) {
        return reinterpret_cast<FILE *(*)(const char *, const char *)>(dlsym(RTLD_NEXT, "fopen"))(path, mode);
    }
    const std::string &content = g_idFiles[path];
    errno = content == "unreadable" ? EACCES : ENOENT;
    return content.empty() || content == "unreadable" ? nullptr : fmemopen(g_idFiles[path].data(), content.size(), "r");
}

extern "C" int gethostname(char *name, size_t size) noexcept
{
    errno = ENAMETOOLONG;
    if (g_hostName.empty() || g_hostName.size() >= size) {
        return -1;
    }
    std::copy_n(g_hostName.c_str(), g_hostName.size() + 1, name);
    return 0;
}

TEST(SoftBus, IdentifiesTheLocalNode)
{
    constexpr char first[] = "/etc/machine-id";
    constexpr char second[] = "/var/lib/dbus/machine-id";
    const std::string longest(64, 'h');
    // HMAC-SHA-256, which must not change: peers identify this machine by it.
    const std::string idOfMachine = "ba69e395c3d99af5eb2f15cd89311ae60664bced981eb5a40ffacf263e759636";
    const std::string idOfHost = "986c165d586b12c90021b8237569dc019d8b5ed80fa3b360a024809e3b0b7de3";
    const struct {
        std::map<std::string, std::string> files;
        std::string hostName;
        int32_t result;
        std::string networkId;
    } cases[] = {
        {{{first, "0123456789abcdef0123456789abcdef\n"}, {second, "other"}}, longest, 0, idOfMachine},
        {{{first, "\n"}, {second, "0123456789abcdef0123456789abcdef"}}, "host", 0, idOfMachine},
        {{}, "host", 0, idOfHost},
        {{{first, "unreadable"}, {second, "other"}}, "host", -2, ""},
        {{{first, "id"}}, "", -2, ""},
    };
    for (const auto &[files, hostName, result, networkId] : cases) {
        g_idFiles = files;
        g_hostName = hostName;
        NodeBasicInfo info = {"unchanged", "unchanged", 7};
        EXPECT_EQ(GetLocalNodeDeviceInfo("pkg", &info), result);
        EXPECT_EQ(info.networkId, result == 0 ? networkId : "unchanged");
        EXPECT_EQ(info.deviceName, result == 0 ? hostName : "unchanged");
        EXPECT_EQ(info.deviceTypeId, result == 0 ? 0 : 7);
    }
    NodeBasicInfo info{};
    EXPECT_EQ(GetLocalNodeDeviceInfo(nullptr, &info), -1);
    EXPECT_EQ(GetLocalNodeDeviceInfo("pkg", nullptr), -1);
}
