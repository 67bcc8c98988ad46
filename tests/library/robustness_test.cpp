// SPDX-License-Identifier: Apache-2.0
//
// The library in adverse conditions: while the process exits, on a small stack, and when exceptions pass through it.

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "dh_device_json.h"
#include "dh_utils_tools.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_adapter_log.h"
#include "ostra_context.h"
#include "ostra_dump.h"
#include "ostra_radar.h"
#include "parameter.h"

extern "C" int __cxa_atexit(void (*handler)(void *), void *argument, void *library) noexcept;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr int SUCCESS = 42;

bool g_isExiting = false;
char g_dumpName[32] = "";

void UseEveryPart()
{
    std::string networkId;
    MessageParcel parcel;
    std::map<int32_t, std::string> read;
    const bool hasWorked = GetRandomID() != GetRandomID() && GetLocalDeviceNetworkId(networkId) == 0 &&
                           !networkId.empty() && IpcUtils::Marshalling(parcel, {{7, "x"}}) &&
                           IpcUtils::UnMarshalling(parcel, read) && read[7] == "x" &&
                           OstraRadar::GetInstance().ServiceStopRes("function", 0);
    OstraContext::GetInstance().AddWaitNotify("device", "event");
    OstraContext::GetInstance().PublishMessage();
    const unsigned char byte = 1;
    OstraDump::GetInstance().Init();
    OstraDump::GetInstance().DumpStreamData(g_dumpName, &byte, 1);
    _exit(hasWorked ? SUCCESS : EXIT_FAILURE);
}

void AtExit(void * /* argument */)
{
    if (g_isExiting) {
        std::thread(UseEveryPart).join();
    }
}

// Does not use atexit: its handlers run with the destructors of the program that registers them.
void RegisterOnce()
{
    [[maybe_unused]] static const int registered = __cxa_atexit(AtExit, nullptr, nullptr);
}

// Where the loader supports this section, the handler is registered before all static objects and runs after their
// destructors.
__attribute__((section(".preinit_array"), used)) void (*const REGISTER_FIRST)() = RegisterOnce;

TEST(Exit, LeavesEveryOperationUsable)
{
    ASSERT_EQ(SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), "w"), 0);
    std::snprintf(g_dumpName, sizeof(g_dumpName), "exit_%d", getpid());
    const auto exitUnderWatch = [] {
        RegisterOnce();
        GetRandomID();
        g_isExiting = true;
        std::exit(0);
    };
    EXPECT_EXIT(exitUnderWatch(), ::testing::ExitedWithCode(SUCCESS), "");
    EXPECT_EQ(unlink((DUMP_PATH_PREFIX + g_dumpName).c_str()), 0) << "there is no dump";
    SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), "-1");
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t SMALL_STACK = size_t{16} * 64 * 1024;  // sanitizers enlarge every frame
#else
constexpr size_t SMALL_STACK = size_t{64} * 1024;
#endif

void *LogAndReadDeepDocuments(void * /* argument */)
{
    DHLog(DH_LOG_INFO, "%s", std::string(4095, 'x').c_str());
    DHOSTRADeviceServiceJson service;
    DHOSTRAAudioProperties audio;
    for (const size_t levels : {98U, 988U}) {  // the deepest documents that the library and cJSON accept
        const std::string arrays = std::string(levels, '[') + std::string(levels, ']');
        service.Unmarshal(R"({"properties":{"a":)" + arrays + "}}");
        audio.Unmarshal(R"({"2102":"[[)" + arrays + "]]\"}");
    }
    MessageParcel parcel;
    std::map<int32_t, std::string> read;
    EXPECT_TRUE(IpcUtils::Marshalling(parcel, {{1, std::string(5000, 'x')}}));
    EXPECT_TRUE(IpcUtils::UnMarshalling(parcel, read));
    return nullptr;
}

TEST(SmallStack, SufficesToLogAndToReadDeepDocuments)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    const auto minStack = static_cast<size_t>(PTHREAD_STACK_MIN);  // 128 KiB on 64-bit Arm
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::max(SMALL_STACK, minStack)), 0);
    pthread_t thread = {};
    ASSERT_EQ(pthread_create(&thread, &attributes, LogAndReadDeepDocuments, nullptr), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_EQ(pthread_attr_destroy(&attributes), 0);
}

// In a process of its own, since the random device is opened once.
TEST(Unwinding, ReopensTheRandomDeviceAfterAFailure)
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
