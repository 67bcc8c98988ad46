// SPDX-License-Identifier: Apache-2.0
//
// A plugin that includes all headers with constants.

#include "ostra_constants.h"
#include "ostra_context.h"
#include "ostra_dump.h"
#include "ostra_radar.h"

extern "C" __attribute__((visibility("default"))) const char16_t *Permission()
{
    return OHOS::DistributedHardware::OstraAdapter::DH_ACCESS_TOKEN_PERMISSION.c_str();
}
