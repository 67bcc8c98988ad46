// SPDX-License-Identifier: Apache-2.0

#include "ostra_device_service.h"

#include "ostra_constants.h"
#include "support/golden_test.h"
#include "support/json_fault.h"

const char *const GOLDEN_FILE =
#include "ostra_device_service_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

class DeviceServiceTest : public GoldenTest {
protected:
    OSTRADeviceService service_;
    std::vector<uint8_t> out_ = {'o', 'l', 'd'};
};

TEST_F(DeviceServiceTest, PacksCompactJsonAndShowsItselfMasked)
{
    EXPECT_EQ(service_.PackServiceData(out_), OSTRA_JSON_SUCCESS);
    Record(std::string(out_.begin(), out_.end()));
    service_ = {
        "d1", "desk tablet", "microphone", 4, {{"note", "a\tb"}, {"2102", R"({"codecs":[0]})"}}, {{"state", "idle"}}};
    EXPECT_EQ(service_.PackServiceData(out_), OSTRA_JSON_SUCCESS);
    Record(std::string(out_.begin(), out_.end()));
    Record(service_.String());
}

TEST_F(DeviceServiceTest, KeepsTheOutputIfAllocationFails)
{
    service_ = {"", "", "", 0, {{"a", "1"}, {"b", "2"}}, {{"c", "3"}}};
    const std::vector<uint8_t> old = out_;
    const JsonFault fault;
    EachFault([&] {
        const int32_t result = CALL(service_.PackServiceData(out_));
        EXPECT_EQ(out_ == old, result == OSTRA_JSON_CREATE_FAILED);
        EXPECT_EQ(out_ != old, result == OSTRA_JSON_SUCCESS);
    });
    out_ = old;
    out_.shrink_to_fit();
    EXPECT_GT(FailEachAllocation([this] { service_.PackServiceData(out_); },
                                 [&] {
                                     EXPECT_EQ(JsonFault::LiveBlocks(), 0);
                                     EXPECT_EQ(out_, old);
                                 }),
              0u);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
