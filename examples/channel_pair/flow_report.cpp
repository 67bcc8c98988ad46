// SPDX-License-Identifier: Apache-2.0

#include "flow_report.h"

#include <utility>
#include <vector>

#include "hisysevent_manager.h"
#include "ostra_radar.h"

using OHOS::DistributedHardware::OstraAdapter::ADAPTER_BEHAVIOR_EVENT;
using OHOS::DistributedHardware::OstraAdapter::OSTRA_DOMAIN;
using OHOS::DistributedHardware::OstraAdapter::OstraRadar;
using OHOS::DistributedHardware::OstraAdapter::SOFTBUS_PKG_NAME;
using OHOS::HiviewDFX::HiSysEventListener;
using OHOS::HiviewDFX::HiSysEventManager;
using OHOS::HiviewDFX::HiSysEventRecord;
using OHOS::HiviewDFX::ListenerRule;

namespace {

constexpr int COLLABORATION_BUSINESS = 2;
constexpr char RESULT_KEY[] = "STAGE_RES";
constexpr int64_t STAGE_FAILED = 2;

int32_t ErrorCode(bool isSuccess)
{
    return isSuccess ? 0 : -1;
}

}  // namespace

// The event's keys and values, in their order.
class FlowReport::Listener : public HiSysEventListener {
public:
    void OnEvent(std::shared_ptr<HiSysEventRecord> sysEvent) override
    {
        std::vector<std::string> names;
        sysEvent->GetParamNames(names);
        std::string row;
        for (const std::string &name : names) {
            std::string text;
            int64_t number = 0;
            if (sysEvent->GetParamValue(name, text) != 0 && sysEvent->GetParamValue(name, number) == 0) {
                text = std::to_string(number);
            }
            row.append(row.empty() ? "" : " ").append(name).append("=").append(text);
        }
        rows_.push_back(row);
        int64_t result = 0;
        failures_ += sysEvent->GetParamValue(RESULT_KEY, result) == 0 && result == STAGE_FAILED ? 1 : 0;
    }

    void OnServiceDied() override
    {
    }

    const std::vector<std::string> &Rows() const
    {
        return rows_;
    }

    uint64_t Failures() const
    {
        return failures_;
    }

private:
    std::vector<std::string> rows_;
    uint64_t failures_ = 0;
};

FlowReport::FlowReport(std::string side) : side_(std::move(side)), listener_(std::make_shared<Listener>())
{
    std::vector<ListenerRule> rules = {ListenerRule(OSTRA_DOMAIN, ADAPTER_BEHAVIOR_EVENT)};
    HiSysEventManager::AddListener(listener_, rules);
    OstraRadar::GetInstance().SetCurBusinessId(COLLABORATION_BUSINESS);
    OstraRadar::GetInstance().ServiceStartRes(side_, COLLABORATION_BUSINESS, "", 0);
}

FlowReport::~FlowReport()
{
    HiSysEventManager::RemoveListener(listener_);
}

void FlowReport::Connected(bool isSuccess)
{
    OstraRadar::GetInstance().ConnectDeviceRes(side_, ErrorCode(isSuccess), SOFTBUS_PKG_NAME);
}

void FlowReport::AudioOpened(bool isSuccess)
{
    OstraRadar::GetInstance().AudioOpenRes(side_, ErrorCode(isSuccess));
}

void FlowReport::AudioClosed(bool isSuccess)
{
    OstraRadar::GetInstance().AudioCloseRes(side_, ErrorCode(isSuccess));
}

void FlowReport::Ended(bool isSuccess)
{
    OstraRadar::GetInstance().DisconnectDeviceRes(side_, ErrorCode(isSuccess), SOFTBUS_PKG_NAME);
    OstraRadar::GetInstance().ServiceStopRes(side_, ErrorCode(isSuccess));
}

void FlowReport::AddRows(Summary &summary, bool isVerbose) const
{
    const uint64_t failures = listener_->Failures();
    summary.Row("events", std::to_string(listener_->Rows().size()) + " steps reported, " +
                              (failures == 0 ? "all successful" : std::to_string(failures) + " failed"));
    for (const std::string &row : listener_->Rows()) {
        if (isVerbose) {
            summary.Row("event", row);
        }
    }
}
