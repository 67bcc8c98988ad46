// SPDX-License-Identifier: Apache-2.0

#include "stream_qos.h"

#include <sys/syscall.h>
#include <unistd.h>

#include "ostra_qos_adapter.h"
#include "qos.h"

namespace {

constexpr auto STREAM_LEVEL = static_cast<int32_t>(OHOS::QOS::QosLevel::QOS_USER_INTERACTIVE);

}  // namespace

StreamQos::StreamQos() : tid_(static_cast<int32_t>(syscall(SYS_gettid)))
{
    RequestAuth(std::to_string(getpid()).c_str());
    setResult_ = SetQos(STREAM_LEVEL, tid_);
}

std::string StreamQos::Reset() const
{
    const std::string level = "level " + std::to_string(STREAM_LEVEL);
    if (setResult_ != 0) {
        return level + " refused: needs privileges";
    }
    return level + (ResetQos(tid_) == 0 ? " granted, and taken back at the end" : " granted, but not taken back");
}
