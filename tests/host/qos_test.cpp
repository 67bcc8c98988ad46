// SPDX-License-Identifier: Apache-2.0
//
// Replays the QoS client. The test stands in for the kernel: what the client asks of it is replaced.

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <string>

#include "parameter.h"
#include "qos.h"
#include "host/recording.h"

using namespace OHOS::QOS;
using namespace replay;

namespace {

std::string g_asked;
int g_kernelResult = 0;
int g_kernelLevel = -1;

int Ask(const std::string &request, int tid)
{
    const bool isOwn = tid == static_cast<int>(syscall(SYS_gettid));
    g_asked = request + (isOwn ? "own" : std::to_string(tid));
    return g_kernelResult;
}

// What the operation gave, and what it asked for.
template <typename Call>
Fields Result(Call call)
{
    g_asked = "nothing";
    const int result = call();
    return {std::to_string(result), g_asked};
}

template <typename Call>
Fields ResultWithLevel(Call call)
{
    const auto none = static_cast<QosLevel>(99);
    QosLevel level = none;
    Fields fields = Result([&] { return call(level); });
    fields.push_back(level == none ? "unchanged" : std::to_string(static_cast<int>(level)));
    return fields;
}

QosLevel Level(const Fields &in)
{
    return static_cast<QosLevel>(Number<int>(in.at(0)));
}

void Switch(const std::string &value)
{
    SetParameter("persist.qosmanager.setQos.on", value.c_str());
}

}  // namespace

namespace OHOS::QOS {

int ApplyQosLevel(int level, int tid)
{
    return Ask("apply " + std::to_string(level) + " to ", tid);
}

int LeaveQosLevel(int tid)
{
    return Ask("leave ", tid);
}

int QueryQosLevel(int tid, int &level)
{
    level = g_kernelLevel;
    return Ask("get ", tid);
}

}  // namespace OHOS::QOS

TEST(HostPlatformReplay, Qos)
{
    const auto begin = [] {
        g_kernelResult = 0;
        g_kernelLevel = -1;
        Switch("true");
    };
    Operations operations;
    operations["SetThreadQos"] = [](const Fields &in) {
        return Result([&] { return SetThreadQos(Level(in)); });
    };
    operations["SetQosForOtherThread"] = [](const Fields &in) {
        return Result([&] { return SetQosForOtherThread(Level(in), Number<int>(in.at(1))); });
    };
    operations["ResetThreadQos"] = [](const Fields &) {
        return Result(ResetThreadQos);
    };
    operations["ResetQosForOtherThread"] = [](const Fields &in) {
        return Result([&] { return ResetQosForOtherThread(Number<int>(in.at(0))); });
    };
    operations["GetThreadQos"] = [](const Fields &) {
        return ResultWithLevel(GetThreadQos);
    };
    operations["GetQosForOtherThread"] = [](const Fields &in) {
        return ResultWithLevel([&](QosLevel &level) { return GetQosForOtherThread(level, Number<int>(in.at(0))); });
    };
    operations["kernel"] = [](const Fields &in) -> Fields {
        g_kernelResult = Number<int>(in.at(0));
        g_kernelLevel = Number<int>(in.at(1));
        return {"-"};
    };
    operations["switch"] = [](const Fields &in) -> Fields {
        Switch(in.at(0));
        return {"-"};
    };
    Replay("recorded/qos.txt", 67, operations, begin);
    begin();
}
