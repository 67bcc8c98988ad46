// SPDX-License-Identifier: Apache-2.0

#include "ostra_context.h"

#include "json_object.h"
#include "ostra_adapter_log.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr DHTopic NOTIFICATION_TOPIC = static_cast<DHTopic>(8);

// Copies of DEV_ID_KEY and ISOMERISM_EVENT, which may be destroyed before the last call to PublishMessage.
constexpr char DEVICE_KEY[] = "dev_id";
constexpr char EVENT_KEY[] = "isomerism_event";

}  // namespace

OstraContext &OstraContext::GetInstance()
{
    static auto *const instance = new OstraContext();  // never destroyed: usable until the process ends
    return *instance;
}

OstraContext::OstraContext() : dhFwkKit_(std::make_shared<DistributedHardwareFwkKit>())
{
}

void OstraContext::AddWaitNotify(const std::string &devId, const std::string &event)
{
    const std::lock_guard<std::mutex> lock(waitNotifyMutex_);
    waitNotifyMap_.insert_or_assign(devId, event);
}

void OstraContext::PublishMessage()
{
    const std::lock_guard<std::mutex> lock(waitNotifyMutex_);
    OSTRA_LOGI("Source device PublishMessage, waitNotify num %zu", waitNotifyMap_.size());
    std::string message;
    for (const auto &[devId, event] : waitNotifyMap_) {
        {
            JsonObject notification;
            notification.AddString(DEVICE_KEY, devId);
            notification.AddString(EVENT_KEY, event);
            if (notification.IsNull()) {
                OSTRA_LOGE("PublishMessage, cJSON jsonObj is nullptr");
                return;
            }
            const JsonString json = notification.PrintUnformatted();
            if (json == nullptr) {
                OSTRA_LOGE("PublishMessage, cJSON_PrintUnformatted failed");
                return;
            }
            message = json.get();
        }
        if (dhFwkKit_ == nullptr) {  // cannot happen
            OSTRA_LOGE("PublishMessage FwkKit is nullptr");
            return;
        }
        OSTRA_LOGI("PublishMessage.");
        dhFwkKit_->PublishMessage(NOTIFICATION_TOPIC, message);
    }
    waitNotifyMap_.clear();
}

std::shared_ptr<DistributedHardwareFwkKit> OstraContext::GetDHFwkKit()
{
    return dhFwkKit_;
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
