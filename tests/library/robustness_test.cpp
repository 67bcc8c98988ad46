// SPDX-License-Identifier: Apache-2.0
//
// The library in adverse conditions: on a small stack, and without file descriptors.

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <stdexcept>

#include "dh_device_json.h"
#include "dh_utils_tools.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_adapter_log.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t SMALL_STACK = size_t{16} * 64 * 1024;  // sanitizers enlarge every frame
#else
constexpr size_t SMALL_STACK = size_t{64} * 1024;
#endif

void *LogAndParseDeepDocuments(void * /* argument */)
{
    DHLog(DH_LOG_INFO, "%s", std::string(4095, 'x').c_str());
    DHOSTRADeviceServiceJson service;
    DHOSTRAAudioProperties audio;
    for (const size_t levels : {98U, 988U}) {  // the deepest documents that the library and cJSON accept
        const std::string arrays = std::string(levels, '[') + std::string(levels, ']');
        service.Unmarshal(R"({"properties":{"a":)" + arrays + "}}");
        audio.Unmarshal(R"({"2102":"[[)" + arrays + "]]\"}");
    }
    OHOS::MessageParcel parcel;
    std::map<int32_t, std::string> read;
    EXPECT_TRUE(IpcUtils::Marshalling(parcel, {{1, std::string(5000, 'x')}}));
    EXPECT_TRUE(IpcUtils::UnMarshalling(parcel, read));
    return nullptr;
}

TEST(RobustnessTest, LogsAndParsesDeepDocumentsOnASmallStack)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    const auto minStack = static_cast<size_t>(PTHREAD_STACK_MIN);  // 128 KiB on 64-bit Arm
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::max(SMALL_STACK, minStack)), 0);
    pthread_t thread = {};
    ASSERT_EQ(pthread_create(&thread, &attributes, LogAndParseDeepDocuments, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

// In a process of its own, since the random device is opened once.
TEST(RobustnessTest, RetriesOpeningTheRandomDevice)
{
    const auto run = [] {
        rlimit files = {};
        getrlimit(RLIMIT_NOFILE, &files);
        const rlimit none = {0, files.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
        EXPECT_THROW(GetRandomID(), std::runtime_error);
        setrlimit(RLIMIT_NOFILE, &files);
        _exit(GetRandomID().size() == 32 && !::testing::Test::HasFailure() ? 0 : 1);
    };
    EXPECT_EXIT(run(), ::testing::ExitedWithCode(0), "");
}
