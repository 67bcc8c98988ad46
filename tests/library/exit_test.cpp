// SPDX-License-Identifier: Apache-2.0
//
// Every operation works until the process is gone, also after the destructors of all static objects.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <string>
#include <thread>

#include "dh_utils_tools.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_context.h"
#include "ostra_dump.h"
#include "ostra_radar.h"
#include "parameter.h"
#include "support/quiet.h"

extern "C" int __cxa_atexit(void (*handler)(void *), void *argument, void *library) noexcept;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr int ALL_WORKED = 42;
constexpr char PARAMETER[] = "sys.ostra.audio.dump.write.enable";
const std::string &DUMP_NAME = *new std::string("exit_test_" + std::to_string(getpid()));

bool g_isExiting = false;

void UseEveryPart()
{
    auto demand = [step = 0](bool hasWorked) mutable {
        ++step;
        if (!hasWorked) {
            _exit(step);
        }
    };
    std::string networkId;
    demand(GetRandomID() != GetRandomID());
    demand(GetLocalDeviceNetworkId(networkId) == 0 && !networkId.empty());
    OstraContext::GetInstance().AddWaitNotify("device", "event");
    OstraContext::GetInstance().PublishMessage();
    MessageParcel parcel;
    std::map<int32_t, std::string> read;
    demand(IpcUtils::Marshalling(parcel, {{7, "x"}}) && IpcUtils::UnMarshalling(parcel, read));
    demand(read[7] == "x");
    demand(OstraRadar::GetInstance().ServiceStopRes("function", 0));

    const unsigned char byte = 1;
    OstraDump::GetInstance().Init();
    OstraDump::GetInstance().DumpStreamData(DUMP_NAME, &byte, 1);
    _exit(ALL_WORKED);
}

void AtExit(void * /* argument */)
{
    if (g_isExiting) {
        std::thread(UseEveryPart).join();
    }
}

// Not with atexit, whose handlers run with the destructors of the program that registers them.
void RegisterOnce()
{
    [[maybe_unused]] static const int registered = __cxa_atexit(AtExit, nullptr, nullptr);
}

// Where the loader knows this section, it comes before any library's static objects, so the handler runs after them.
__attribute__((section(".preinit_array"), used)) void (*const REGISTER_FIRST)() = RegisterOnce;

TEST(Exit, LeavesEveryOperationUsable)
{
    ASSERT_EQ(SetParameter(PARAMETER, "w"), 0);
    const auto exitUnderWatch = [] {
        RegisterOnce();
        GetRandomID();
        g_isExiting = true;
        std::exit(0);
    };
    EXPECT_EXIT(exitUnderWatch(), ::testing::ExitedWithCode(ALL_WORKED), "");
    EXPECT_EQ(unlink(("/data/local/tmp/" + DUMP_NAME).c_str()), 0);  // the dump is there
    SetParameter(PARAMETER, "-1");
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
