// SPDX-License-Identifier: Apache-2.0

#include "ostra_device_service.h"

#include "ostra_constants.h"
#include "support/golden_test.h"

#include "ostra_device_service_test.txt"

using namespace OHOS::DistributedHardware::OstraAdapter;

using DeviceServiceTest = GoldenTest;

TEST_F(DeviceServiceTest, PacksCompactJsonAndMasksString)
{
    const OSTRADeviceService services[] = {
        {},
        {"d1", "desk tablet", "microphone", 4, {{"note", "a\tb"}, {"2102", R"({"codecs":[0]})"}}, {{"state", "idle"}}}};
    for (const OSTRADeviceService &service : services) {
        std::vector<uint8_t> out = {'o', 'l', 'd'};
        EXPECT_EQ(service.PackServiceData(out), OSTRA_JSON_SUCCESS);
        RecordLine(std::string(out.begin(), out.end()));
        RecordLine(service.String());
    }
}

TEST_F(DeviceServiceTest, LeavesTheOutputUnchangedIfAllocationFails)
{
    const OSTRADeviceService service = {"", "", "", 0, {{"a", "1"}, {"b", "2"}}, {{"c", "3"}}};
    const std::vector<uint8_t> old = {'o', 'l', 'd'};
    std::vector<uint8_t> out = old;
    int32_t result = 0;
    EachFault(
        [&] {
            result = OSTRA_JSON_CREATE_FAILED;  // unless it throws
            result = CALL(service.PackServiceData(out));
        },
        [&] { EXPECT_EQ(result, out == old ? OSTRA_JSON_CREATE_FAILED : OSTRA_JSON_SUCCESS); });
}
