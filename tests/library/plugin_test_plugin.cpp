// SPDX-License-Identifier: Apache-2.0
//
// A plugin that uses the library's headers and nothing else.

#include "channel_protocol.h"
#include "dh_device_json.h"
#include "dh_utils_tools.h"
#include "ipc_utils.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"
#include "ostra_context.h"
#include "ostra_device_service.h"
#include "ostra_dump.h"
#include "ostra_radar.h"

extern "C" __attribute__((visibility("default"))) const char *NameOfType(int type)
{
    using namespace OHOS::DistributedHardware;
    return OstraAdapter::DHTYPE_DISPLAY_NAME_MAP.at(static_cast<DHType>(type)).c_str();
}
