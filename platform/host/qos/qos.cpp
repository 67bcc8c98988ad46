// SPDX-License-Identifier: Apache-2.0

#include "qos.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <string_view>

#include "parameter.h"
#include "qos/scheduling.h"

namespace OHOS::QOS {

using namespace ostra::host;

namespace {

constexpr int INVALID_LEVEL = -1;
constexpr char ENABLED_PARAMETER[] = "persist.qosmanager.setQos.on";

bool IsDisabled()
{
    std::array<char, 128> value{};
    GetParameter(ENABLED_PARAMETER, "true", value.data(), value.size());
    return std::string_view(value.data()) == "false";
}

bool IsLevel(int level)
{
    return level >= 0 && level < static_cast<int>(QosLevel::QOS_MAX);
}

int CurrentThread()
{
    return static_cast<int>(syscall(SYS_gettid));
}

}  // namespace

int SetQosForOtherThread(enum QosLevel level, int tid)
{
    if (IsDisabled()) {
        return 0;
    }
    int number = static_cast<int>(level);
    return IsLevel(number) ? SendQosRequest(QosRequest::SET, tid, number) : INVALID_LEVEL;
}

int ResetQosForOtherThread(int tid)
{
    int ignored = 0;
    return IsDisabled() ? 0 : SendQosRequest(QosRequest::RESET, tid, ignored);
}

int GetQosForOtherThread(enum QosLevel &level, int tid)
{
    int number = 0;
    const int result = SendQosRequest(QosRequest::GET, tid, number);
    if (result != 0) {
        return result;
    }
    if (!IsLevel(number)) {
        return INVALID_LEVEL;
    }
    level = static_cast<QosLevel>(number);
    return 0;
}

int SetThreadQos(enum QosLevel level)
{
    return SetQosForOtherThread(level, CurrentThread());
}

int ResetThreadQos()
{
    return ResetQosForOtherThread(CurrentThread());
}

int GetThreadQos(enum QosLevel &level)
{
    return GetQosForOtherThread(level, CurrentThread());
}

}  // namespace OHOS::QOS
