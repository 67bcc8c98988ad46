// SPDX-License-Identifier: Apache-2.0
//
// What a peer sends is read within the stack of a small thread, however deep it nests.

#include <gtest/gtest.h>
#include <pthread.h>

#include <map>
#include <string>

#include "dh_device_json.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_adapter_log.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t STACK_SIZE = size_t{16} * 64 * 1024;  // sanitizers widen every frame
#else
constexpr size_t STACK_SIZE = size_t{64} * 1024;
#endif

// As many arrays in each other, in an object: one level more than `arrays`.
std::string Nested(size_t arrays, const std::string &key = "properties")
{
    return "{\"" + key + "\":{\"a\":" + std::string(arrays - 1, '[') + std::string(arrays - 1, ']') + "}}";
}

std::string InCapabilities(const std::string &text)
{
    std::string escaped;
    for (char character : text) {
        escaped += character == '"' || character == '\\' ? "\\" : "";
        escaped += character;
    }
    return R"({"2102":")" + escaped + "\"}";
}

struct Document {
    std::string text;
    bool isRead;
};

const Document DOCUMENTS[] = {
    {Nested(99), true},
    {Nested(100), false},
    {Nested(990), false},
    {std::string(100, '['), false},  // no JSON
    {R"({"a":")" + std::string(200, '[') + "\"}", true},
    {R"({"a":"\")" + std::string(200, '{') + "\"}", true},
    {R"({"a":"\\","b":)" + Nested(990) + "}", false},
    {R"({"a":"\)", false},
    {Nested(98) + std::string(200, '['), true},  // behind the end nothing is read
    {"]" + Nested(98), false},
};

// A list of many short arrays is not deep.
std::string Wide()
{
    std::string text = R"({"a":[)";
    for (int i = 0; i < 200; ++i) {
        text += "[{}],";
    }
    return text + "0]}";
}

void *ReadEverything(void * /* argument */)
{
    DHLog(DH_LOG_INFO, "%s", std::string(4095, 'x').c_str());
    for (const auto &[text, isRead] : DOCUMENTS) {
        EXPECT_EQ(DHOSTRADeviceServiceJson().Unmarshal(text), isRead ? 0 : -70005) << text;
        EXPECT_EQ(DHOSTRAAudioProperties().Unmarshal(text), isRead ? 0 : -70005) << text;
        EXPECT_EQ(DHOSTRAAudioProperties().Unmarshal(InCapabilities(text)), isRead ? 0 : -70004) << text;
    }
    EXPECT_EQ(DHOSTRADeviceServiceJson().Unmarshal(Wide()), 0);
    MessageParcel parcel;
    std::map<int32_t, std::string> read;
    EXPECT_TRUE(IpcUtils::Marshalling(parcel, {{1, std::string(5000, 'x')}}));
    EXPECT_TRUE(IpcUtils::UnMarshalling(parcel, read));
    return nullptr;
}

TEST(SmallStack, IsEnoughForLogAndReading)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, STACK_SIZE), 0);
    pthread_t thread = {};
    ASSERT_EQ(pthread_create(&thread, &attributes, ReadEverything, nullptr), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_EQ(pthread_attr_destroy(&attributes), 0);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
