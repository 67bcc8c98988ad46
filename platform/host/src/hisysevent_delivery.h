// SPDX-License-Identifier: Apache-2.0
//
// What writing and listening share on the host: the content of a record, and who is to get an event.

#ifndef HOST_HISYSEVENT_DELIVERY_H
#define HOST_HISYSEVENT_DELIVERY_H

#include <memory>
#include <string>
#include <vector>

#include "cJSON.h"
#include "hisysevent_manager.h"

namespace OHOS::HiviewDFX {

struct JsonDeleter {
    void operator()(cJSON *tree) const
    {
        cJSON_Delete(tree);
    }
};
using JsonTree = std::unique_ptr<cJSON, JsonDeleter>;

// The fields that the platform puts before the event's own keys.
constexpr int PLATFORM_FIELD_COUNT = 8;
constexpr char DOMAIN_FIELD[] = "domain_";
constexpr char NAME_FIELD[] = "name_";
constexpr char TYPE_FIELD[] = "type_";

// Integers stand in the tree as raw text: cJSON's own numbers are doubles and keep 53 bits only.
struct HiSysEventRecord::Content {
    JsonTree fields;
    std::string json;
};

// The listeners with a rule that matches, in the order in which they were added.
std::vector<std::shared_ptr<HiSysEventListener>> FindListeners(const std::string &domain, const std::string &eventName);

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_DELIVERY_H
