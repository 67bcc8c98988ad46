// SPDX-License-Identifier: Apache-2.0
//
// What a peer sends is read within the stack of a small thread, however deep it nests.

#include <pthread.h>

#include <algorithm>
#include <climits>

#include "dh_device_json.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_adapter_log.h"
#include "support/session.h"

const char *const SESSIONS =
#include "small_stack_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t STACK_SIZE = size_t{16} * 64 * 1024;  // sanitizers widen every frame
#else
constexpr size_t STACK_SIZE = size_t{64} * 1024;
#endif

class SmallStack : public Session {
protected:
    void ReadEverything()
    {
        CALL(DHLog(DH_LOG_INFO, "%s", std::string(4095, 'x').c_str()));
        for (const size_t levels : {100U, 101U, 990U}) {
            const std::string arrays = std::string(levels - 2, '[') + std::string(levels - 2, ']');
            std::map<std::string, int32_t> in;
            Unrecorded([&] {
                in = {{"service", service_.Unmarshal(R"({"properties":{"a":)" + arrays + "}}")},
                      {"properties", audio_.Unmarshal(R"({"2103":{"a":)" + arrays + "}}")},
                      {"capabilities", audio_.Unmarshal(R"({"2102":"[[)" + arrays + "]]\"}")}};
            });
            SHOW(levels, in["service"], in["properties"], in["capabilities"]);
        }
        MessageParcel parcel;
        std::map<int32_t, std::string> read;
        CALL(IpcUtils::Marshalling(parcel, {{1, std::string(5000, 'x')}}));
        CALL(IpcUtils::UnMarshalling(parcel, read));
    }

    DHOSTRADeviceServiceJson service_;
    DHOSTRAAudioProperties audio_;
};

TEST_F(SmallStack, IsEnoughForLogAndReading)
{
    const auto read = [](void *test) -> void * {
        static_cast<SmallStack_IsEnoughForLogAndReading_Test *>(test)->ReadEverything();
        return nullptr;
    };
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    const auto least = static_cast<size_t>(PTHREAD_STACK_MIN);  // 128 KiB on 64-bit Arm
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::max(STACK_SIZE, least)), 0);
    pthread_t thread = {};
    ASSERT_EQ(pthread_create(&thread, &attributes, read, this), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_EQ(pthread_attr_destroy(&attributes), 0);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
