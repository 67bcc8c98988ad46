// SPDX-License-Identifier: Apache-2.0
//
// A service document from a peer: what was taken from it, written as a document again, is taken the same.

#include <string>
#include <tuple>
#include <vector>

#include "dh_device_json.h"
#include "fuzz_target.h"
#include "ostra_constants.h"
#include "ostra_device_service.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr char EMPTY_OBJECT[] = "{}";

auto MembersOf(const DHOSTRADeviceServiceJson &service)
{
    return std::tie(service.deviceId_, service.deviceName_, service.serviceId_, service.serviceType_,
                    service.properties_, service.status_);
}

bool IsObjectOrNothing(const std::string &text)
{
    return text.empty() || (text.front() == '{' && text.back() == '}');
}

// The document of what was read. PackServiceData writes the simple members, and empty objects in place of the two that
// were kept as texts: the texts go there.
std::string DocumentOf(const DHOSTRADeviceServiceJson &read)
{
    OSTRADeviceService service;
    service.deviceId_ = read.deviceId_;
    service.deviceName_ = read.deviceName_;
    service.serviceId_ = read.serviceId_;
    service.serviceType_ = read.serviceType_;
    std::vector<uint8_t> bytes;
    Require(service.PackServiceData(bytes) == OSTRA_JSON_SUCCESS, "what was read can be packed");
    std::string document(bytes.begin(), bytes.end());

    const std::string tail = "\"properties\":{},\"status\":{}}";
    const size_t tailBegin = document.size() - tail.size();
    Require(document.compare(tailBegin, tail.size(), tail) == 0, "the two objects end the document");
    document.erase(tailBegin);
    document += "\"properties\":" + (read.properties_.empty() ? EMPTY_OBJECT : read.properties_);
    document += ",\"status\":" + (read.status_.empty() ? EMPTY_OBJECT : read.status_) + "}";
    return document;
}

// A service whose texts hold `text` is read as it was packed, each text up to its first zero byte.
void CheckPacking(const std::string &text)
{
    OSTRADeviceService service;
    service.deviceId_ = "d" + text;
    service.deviceName_ = "n" + text;
    service.serviceId_ = "s" + text;
    service.serviceType_ = static_cast<int32_t>(text.size());
    service.properties_["p"] = text;
    std::vector<uint8_t> bytes;
    Require(service.PackServiceData(bytes) == OSTRA_JSON_SUCCESS, "every text can be packed");
    DHOSTRADeviceServiceJson read;
    Require(read.Unmarshal({bytes.begin(), bytes.end()}) == OSTRA_JSON_SUCCESS, "what was packed is read");
    Require(read.deviceId_ == service.deviceId_.c_str() && read.deviceName_ == service.deviceName_.c_str() &&
                read.serviceId_ == service.serviceId_.c_str() && read.serviceType_ == service.serviceType_,
            "each member comes back");
    Require(read.properties_.rfind("{\"p\":", 0) == 0 && read.status_ == EMPTY_OBJECT, "each object comes back");
}

void Check(const std::string &document)
{
    DHOSTRADeviceServiceJson read;
    const int32_t result = read.Unmarshal(document);
    if (result != OSTRA_JSON_SUCCESS) {
        const DHOSTRADeviceServiceJson untouched;
        Require(result == OSTRA_JSON_INPUT_INVALID, "refused as no JSON");
        Require(MembersOf(read) == MembersOf(untouched), "a refused document changes nothing");
        return;
    }
    Require(IsObjectOrNothing(read.properties_) && IsObjectOrNothing(read.status_), "objects are kept as texts");

    DHOSTRADeviceServiceJson again = read;
    Require(again.Unmarshal(document) == OSTRA_JSON_SUCCESS && MembersOf(again) == MembersOf(read),
            "reading the document a second time changes nothing");
    DHOSTRADeviceServiceJson unpacked;
    Require(unpacked.Unmarshal(DocumentOf(read)) == OSTRA_JSON_SUCCESS, "what was packed is read");
    if (read.properties_.empty()) {
        unpacked.properties_.clear();  // it was packed as an empty object
    }
    if (read.status_.empty()) {
        unpacked.status_.clear();
    }
    Require(MembersOf(unpacked) == MembersOf(read), "every member comes back");
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string input(data, data + size);
    OHOS::DistributedHardware::OstraAdapter::Check(input);
    OHOS::DistributedHardware::OstraAdapter::CheckPacking(input);
    return 0;
}
