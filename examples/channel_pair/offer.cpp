// SPDX-License-Identifier: Apache-2.0

#include "offer.h"

#include <cJSON.h>

#include <map>
#include <memory>

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

constexpr char AUDIO_CAPABILITIES[] = R"({"codecs":[0,2],"profiles":[{"sampleRate":48000,"channel":12,"format":1},)"
                                      R"({"sampleRate":16000,"channel":16,"format":1}]})";

using Members = std::map<std::string, std::string>;

// The text members of a JSON object.
Members TextMembers(const std::string &json)
{
    Members members;
    const std::unique_ptr<cJSON, decltype(&cJSON_Delete)> object(cJSON_Parse(json.c_str()), cJSON_Delete);
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, object.get())
    {
        if (cJSON_IsString(member) != 0) {
            members[member->string] = member->valuestring;
        }
    }
    return members;
}

}  // namespace

Offer MakeOffer(const DHConnectInfo &connection)
{
    Offer offer;
    offer.device.deviceId_ = connection.sourceNetworkId;
    offer.device.deviceName_ = "desk tablet";
    offer.device.localIp_ = connection.sourceIp;
    offer.device.remoteIp_ = connection.sinkIp;
    offer.device.port_ = connection.port;
    offer.device.supportMic_ = true;
    offer.service.deviceId_ = connection.sourceNetworkId;
    offer.service.deviceName_ = offer.device.deviceName_;
    offer.service.serviceId_ = "microphone";
    offer.service.serviceType_ = 4;
    offer.service.properties_ = {{"2102", AUDIO_CAPABILITIES}, {"note", "quotes \" and \\ and \n survive"}};
    offer.service.status_ = {{"state", "idle"}};
    return offer;
}

std::string TextMember(const std::string &json, const char *key)
{
    return TextMembers(json)[key];
}

bool SaysTheSame(const DHOSTRADeviceServiceJson &read, const OSTRADeviceService &offered)
{
    return read.deviceId_ == offered.deviceId_ && read.deviceName_ == offered.deviceName_ &&
           read.serviceId_ == offered.serviceId_ && read.serviceType_ == offered.serviceType_ &&
           TextMembers(read.properties_) == offered.properties_ && TextMembers(read.status_) == offered.status_;
}
