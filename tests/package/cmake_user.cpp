// SPDX-License-Identifier: Apache-2.0

#include <cstdio>
#include <vector>

#include "channel_protocol.h"
#include "dh_device_json.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_context.h"
#include "ostra_device_service.h"
#include "ostra_dump.h"
#include "ostra_radar.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

// Every public class is used, so that each must be there to link with.
int main()
{
    OSTRADeviceService offered;
    offered.deviceName_ = "tablet";
    std::vector<uint8_t> bytes;
    DHOSTRADeviceServiceJson read;
    OHOS::MessageParcel parcel;
    std::map<int32_t, std::string> settings = {{1, "48000"}};
    ChannelProtocol frame;
    const bool works = offered.PackServiceData(bytes) == 0 && read.Unmarshal({bytes.begin(), bytes.end()}) == 0 &&
                       read.deviceName_ == "tablet" && IpcUtils::Marshalling(parcel, settings) &&
                       IpcUtils::UnMarshalling(parcel, settings) && frame.Create(5, static_cast<int>(bytes.size())) &&
                       OstraContext::GetInstance().GetDHFwkKit() != nullptr &&
                       OstraRadar::GetInstance().AudioOpenRes("main", 0);
    OstraDump::GetInstance().UnInit();
    std::puts(works ? "the package works from C++" : "the package does NOT work from C++");
    return works ? 0 : 1;
}
