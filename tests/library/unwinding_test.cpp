// SPDX-License-Identifier: Apache-2.0
//
// Exceptions that pass through the library leave no lock held, nothing leaked, and nothing half written. A lock that is
// held makes a test run into its time limit.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "cJSON.h"
#include "dh_device_json.h"
#include "dh_utils_tools.h"
#include "ostra_context.h"
#include "ostra_device_service.h"
#include "support/fault.h"
#include "support/quiet.h"

namespace OHOS::DistributedHardware {
namespace {

bool g_listenerRaises = false;
std::vector<std::string> g_published;

}  // namespace

// In place of the framework's own.
int32_t DistributedHardwareFwkKit::PublishMessage(const DHTopic /* topic */, const std::string &message)
{
    g_published.push_back(message);
    if (g_listenerRaises) {
        throw std::runtime_error("a listener that fails");
    }
    return 0;
}

}  // namespace OHOS::DistributedHardware

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// Repeats the operation, each time with a later allocation that fails, until none does, and calls `check` after each
// std::bad_alloc that passes.
template <typename Operation, typename Check>
void FailEachAllocation(Operation operation, Check check)
{
    for (uint64_t failing = 0;; ++failing) {
        try {
            const AllocationFault fault(failing);
            operation();
            ASSERT_GT(failing, 0U);
            return;
        } catch (const std::bad_alloc &) {
        }
        check();
    }
}

class UnwindingContext : public ::testing::Test {
protected:
    std::vector<std::string> Published()
    {
        g_published.clear();
        context_.PublishMessage();
        return g_published;
    }

    OstraContext &context_ = OstraContext::GetInstance();
    const std::vector<std::string> first_ = {R"({"dev_id":"1","isomerism_event":"first"})"};
};

TEST_F(UnwindingContext, WorksOnAfterAListenerThatRaises)
{
    context_.AddWaitNotify("1", "first");
    g_listenerRaises = true;
    EXPECT_THROW(context_.PublishMessage(), std::runtime_error);
    g_listenerRaises = false;
    EXPECT_EQ(Published(), first_);  // still queued
    EXPECT_TRUE(Published().empty());
}

TEST_F(UnwindingContext, QueuesANotificationWholeOrNotAtAll)
{
    const std::string longText(100, 'x');
    for (const char *device : {"1", "2"}) {
        context_.AddWaitNotify("1", "first");
        FailEachAllocation([&] { context_.AddWaitNotify(device, longText); },
                           [&] {
                               EXPECT_EQ(Published(), first_);
                               context_.AddWaitNotify("1", "first");
                           });
        EXPECT_EQ(Published().back(),
                  "{\"dev_id\":\"" + std::string(device) + R"(","isomerism_event":")" + longText + "\"}");
    }
}

int g_jsonBlocks = 0;

TEST(Unwinding, PackingLeaksNothing)
{
    cJSON_Hooks counting = {[](size_t size) {
                                ++g_jsonBlocks;
                                return std::malloc(size);
                            },
                            [](void *block) {
                                g_jsonBlocks -= block == nullptr ? 0 : 1;
                                std::free(block);
                            }};
    cJSON_InitHooks(&counting);
    std::vector<uint8_t> out = {1, 2, 3};
    const OSTRADeviceService service;
    FailEachAllocation([&] { service.PackServiceData(out); },
                       [&] {
                           EXPECT_EQ(g_jsonBlocks, 0);
                           EXPECT_EQ(out, (std::vector<uint8_t>{1, 2, 3}));
                       });
    cJSON_InitHooks(nullptr);
}

TEST(Unwinding, ListsOfCapabilitiesGrowAsAWhole)
{
    const std::string profile = R"({\"sampleRate\":44100,\"channel\":3,\"format\":1})";
    const std::string text = R"({"2102":"{\"codecs\":[0,1],\"profiles\":[)" + profile + "," + profile + "]}\"}";
    DHOSTRAAudioProperties audio;
    FailEachAllocation([&] { audio.Unmarshal(text); },
                       [&] {
                           EXPECT_EQ(audio.codecs_.size() % 2, 0U);
                           EXPECT_EQ(audio.profiles_.size() % 2, 0U);
                           EXPECT_EQ(audio.audioProfiles_,
                                     audio.audioProfiles_.empty() ? "" : "44100,2,16;44100,2,16;");
                           audio = DHOSTRAAudioProperties();
                       });
}

// In a process of its own, since the random source is made once.
TEST(Unwinding, ARandomSourceThatFailedIsTriedAgain)
{
    const auto use = [] {
        rlimit files = {};
        getrlimit(RLIMIT_NOFILE, &files);
        const rlimit none = {0, files.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
        EXPECT_THROW(GetRandomID(), std::runtime_error);
        setrlimit(RLIMIT_NOFILE, &files);
        _exit(GetRandomID().size() == 32 && !::testing::Test::HasFailure() ? 0 : 1);
    };
    EXPECT_EXIT(use(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
