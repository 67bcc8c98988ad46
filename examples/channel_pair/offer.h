// SPDX-License-Identifier: Apache-2.0
//
// What the source of the example pair offers: its device and one audio service, with the service's capabilities. Both
// sides know it, so that the sink can tell whether what it reads from the documents is what the source packed.

#ifndef EXAMPLES_OFFER_H
#define EXAMPLES_OFFER_H

#include <string>

#include "dh_device_json.h"
#include "dh_utils_tools.h"
#include "ostra_device_service.h"

struct Offer {
    OHOS::DistributedHardware::OstraAdapter::DHOSTRADeviceJson device;
    OHOS::DistributedHardware::OstraAdapter::OSTRADeviceService service;
};

Offer MakeOffer(const OHOS::DistributedHardware::OstraAdapter::DHConnectInfo &connection);

// The value of a text member of a JSON object; empty when there is none.
std::string TextMember(const std::string &json, const char *key);

// True when what was read of a service says the same as `offered`, every property included.
bool SaysTheSame(const OHOS::DistributedHardware::OstraAdapter::DHOSTRADeviceServiceJson &read,
                 const OHOS::DistributedHardware::OstraAdapter::OSTRADeviceService &offered);

#endif  // EXAMPLES_OFFER_H
