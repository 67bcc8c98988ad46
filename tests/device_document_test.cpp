// SPDX-License-Identifier: Apache-2.0

#include "dh_device_json.h"
#include "ostra_constants.h"
#include "ostra_device_service.h"
#include "support/json_fault.h"
#include "support/session.h"

const char *const SESSIONS =
#include "sessions/device_document_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

class Device : public Session {
protected:
    DHOSTRADeviceJson device_;
};

class Service : public Session {
protected:
    OSTRADeviceService sent_;
    DHOSTRADeviceServiceJson received_;
    std::vector<uint8_t> bytes_ = {'o', 'l', 'd'};
};

TEST_F(Device, StartsWithItsDefaults)
{
    CALL(static_cast<void>(DHOSTRADeviceJson()));
    SHOW(device_.deviceId_, device_.deviceName_, device_.deviceType_, device_.reserved_, device_.bluetoothMac_,
         device_.btName_, device_.localIp_, device_.remoteIp_, device_.port_, device_.businessId_, device_.supportMic_,
         device_.supportCamera_, device_.tavoniTv_, device_.properties_);
    SHOW(device_.GetVersionByService(-2), device_.GetVersionByService(1), device_.GetVersionByService(2),
         device_.GetVersionByService(3), device_.GetVersionByService(4), device_.GetVersionByService(6));
}

TEST_F(Device, WritesEveryMemberInItsPlace)
{
    std::string text = "old";
    device_.deviceId_ = "id\"\\\n";
    device_.deviceName_ = "name";
    device_.deviceType_ = 4294967295;
    device_.reserved_ = "never shown";
    device_.bluetoothMac_ = "mac";
    device_.btName_ = "bt";
    device_.localIp_ = "local";
    device_.remoteIp_ = "remote";
    device_.port_ = INT32_MIN;
    device_.businessId_ = 4000000000;
    device_.supportMic_ = true;
    device_.properties_ = R"({"mine":1})";
    CALL(device_.Unmarshal("{not json"));  // reads nothing
    CALL(device_.Unmarshal(R"({"port":7})"));
    CALL(device_.Marshal(text));
    SHOW(text);
    const size_t flags = text.find("\"supportMic");
    device_.supportMic_ = false;
    device_.supportCamera_ = true;
    CALL(device_.Marshal(text));
    CALL(text.substr(flags, 60));
    device_.supportCamera_ = false;
    device_.tavoniTv_ = true;
    CALL(device_.Marshal(text));
    CALL(text.substr(flags, 60));
}

TEST_F(Device, ReportsEachFailedAllocationAndLosesNothing)
{
    const JsonFault fault;
    EachFault([this] {
        device_.properties_ = "before";
        std::string text = "old";
        CALL(device_.Marshal(text));
        const bool isKept = device_.properties_ == "before";
        SHOW(isKept, text);
    });
}

TEST_F(Service, IsPackedCompactAndInOrder)
{
    SHOW(sent_.serviceType_);
    CALL(sent_.PackServiceData(bytes_));
    SHOW(bytes_);
    sent_ = {"device1", "pad", "service", -2, {{"b", "q\"b\\"}, {"a", "\xC3\xA9\x01"}}, {{"k", "v"}}};
    CALL(sent_.PackServiceData(bytes_));
    SHOW(bytes_);
    CALL(sent_.String());
}

TEST_F(Service, ReportsEachFailedAllocationAndLosesNothing)
{
    const JsonFault fault;
    sent_ = {"", "", "", 0, {{"a", "1"}, {"b", "2"}}, {{"c", "3"}}};
    EachFault([this] {
        CALL(sent_.PackServiceData(bytes_));
        SHOW(bytes_);
    });
}

TEST_F(Service, TakesOnlyMembersOfTheRightType)
{
    CALL(static_cast<void>(DHOSTRADeviceServiceJson()));
    SHOW(received_.serviceType_);
    CALL(received_.Unmarshal("{}"));
    CALL(received_.Unmarshal(R"({"deviceId":"0123456789","deviceName":"pad","serviceId":"service","serviceType":3.9,)"
                             R"("properties":{ "a" : [1, {"b": null}] },"status":{ "k":"v" },"2102":"{}"})"));
    SHOW(received_.deviceId_, received_.deviceName_, received_.serviceId_, received_.properties_, received_.status_);
    CALL(received_.Unmarshal(R"({"deviceId":1,"deviceName":null,"serviceId":{},"serviceType":"4","properties":"{}",)"
                             R"("status":[]})"));
    CALL(received_.Unmarshal(R"({"serviceType":-5,"status":{}})"));
    CALL(received_.Unmarshal(""));
    CALL(received_.String());
}

TEST_F(Service, ReportsEachFailedAllocationInReading)
{
    const JsonFault fault;
    EachFault([this] {
        received_.deviceId_ = received_.properties_ = received_.status_ = "before";
        CALL(received_.Unmarshal(R"({"status":{"b":"2"},"properties":{"a":"1"},"deviceId":"s"})"));
        SHOW(received_.deviceId_, received_.properties_, received_.status_);
    });
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
