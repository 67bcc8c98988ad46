// SPDX-License-Identifier: Apache-2.0

#include "ostra_radar.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <mutex>
#include <regex>
#include <set>
#include <thread>
#include <variant>
#include <vector>

#include "hisysevent_manager.h"
#include "ostra_radar_adapter.h"
#include "support/log_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using HiviewDFX::HiSysEvent;
using HiviewDFX::HiSysEventListener;
using HiviewDFX::HiSysEventManager;
using HiviewDFX::HiSysEventRecord;
using HiviewDFX::ListenerRule;

using Value = std::variant<int64_t, std::string>;
using Event = std::vector<std::pair<std::string, Value>>;  // the event's own keys in their order

// Collects the library's events while it lives.
class EventRecorder {
public:
    EventRecorder() : listener_(std::make_shared<Listener>())
    {
        std::vector<ListenerRule> rules = {ListenerRule("OSTRAADAPTER", "OSTRA_ADAPTER_BEHAVIOR")};
        EXPECT_EQ(HiSysEventManager::AddListener(listener_, rules), 0);
    }

    ~EventRecorder()
    {
        HiSysEventManager::RemoveListener(listener_);
    }

    std::vector<Event> Take()
    {
        const std::lock_guard<std::mutex> lock(listener_->mutex);
        std::vector<Event> taken;
        taken.swap(listener_->events);
        return taken;
    }

private:
    struct Listener : HiSysEventListener {
        void OnEvent(std::shared_ptr<HiSysEventRecord> record) override
        {
            EXPECT_EQ(record->GetEventType(), HiSysEvent::BEHAVIOR);
            std::vector<std::string> names;
            record->GetParamNames(names);
            Event event;
            for (const std::string &name : names) {
                int64_t number = 0;
                std::string text;
                const bool isNumber = record->GetParamValue(name, number) == 0;
                EXPECT_TRUE(isNumber || record->GetParamValue(name, text) == 0) << name;
                event.emplace_back(name, isNumber ? Value(number) : Value(text));
            }
            const std::lock_guard<std::mutex> lock(mutex);
            events.push_back(event);
        }

        void OnServiceDied() override
        {
        }

        std::mutex mutex;
        std::vector<Event> events;
    };

    std::shared_ptr<Listener> listener_;
};

struct Method {
    const char *name;
    std::function<bool(int)> report;  // takes the error code
    int64_t stage;
    bool callsPackage = false;
    int64_t state = 0;
    const char *nameInLog = "UpdatePortRes";
};

const std::vector<Method> &Methods()
{
    static OstraRadar &radar = OstraRadar::GetInstance();
    static const std::vector<Method> methods = {
        {"ServiceStartRes", [](int e) { return radar.ServiceStartRes("F", 7, "ignored", e); }, 1, false, 1,
         "ServiceStartRes"},
        {"ConnectDeviceRes", [](int e) { return radar.ConnectDeviceRes("F", e, "P"); }, 2, true, 0, "ConnectDeviceRes"},
        {"UpdateRes", [](int e) { return radar.UpdateRes("F", e, "P"); }, 3, true, 0, "UpdateRes"},
        {"UpdatePortRes", [](int e) { return radar.UpdatePortRes("F", e); }, 4},
        {"EnableVirtualRes", [](int e) { return radar.EnableVirtualRes("F", e); }, 5},
        {"AudioOpenRes", [](int e) { return radar.AudioOpenRes("F", e); }, 6},
        {"AudioCloseRes", [](int e) { return radar.AudioCloseRes("F", e); }, 7},
        {"DisconnectDeviceRes", [](int e) { return radar.DisconnectDeviceRes("F", e, "P"); }, 8, true},
        {"ServiceStopRes", [](int e) { return radar.ServiceStopRes("F", e); }, 9, false, 2, "ServiceStopRes"},
        {"LoadSinkServiceRes", [](int e) { return radar.LoadSinkServiceRes("F", e); }, 10, false, 0,
         "LoadSinkServiceRes"},
        {"UnLoadSinkServiceRes", [](int e) { return radar.UnLoadSinkServiceRes("F", e); }, 11, false, 0,
         "UnLoadSinkServiceRes"},
    };
    return methods;
}

Event ExpectedEvent(const Method &method, int errorCode, int64_t businessId, const std::string &host)
{
    const int64_t scene = method.stage == 1 ? 7 : businessId;
    Event event = {{"ORG_PKG", "ostra_adapter"}, {"FUNC", "F"}};
    if (method.callsPackage) {
        event.emplace_back("TO_CALL_PKG", "P");
    }
    event.insert(event.end(), {{"HOST_PKG", host},
                               {"BIZ_SCENE", scene},
                               {"BIZ_STAGE", method.stage},
                               {"STAGE_RES", int64_t{errorCode == 0 ? 1 : 2}}});
    if (method.state != 0) {
        event.emplace_back("BIZ_STATE", method.state);
    }
    if (errorCode != 0) {
        event.emplace_back("ERROR_CODE", int64_t{errorCode});
    }
    return event;
}

TEST(Radar, ReportsEachStepWithItsKeysInOrder)
{
    EventRecorder events;
    LogRecorder log;
    EXPECT_TRUE(Methods()[9].report(0));
    EXPECT_EQ(events.Take(), (std::vector<Event>{ExpectedEvent(Methods()[9], 0, -1, "")}));
    OstraRadar::GetInstance().SetCurBusinessId(2);
    for (const Method &method : Methods()) {
        for (int errorCode : {0, -1, 1, INT32_MIN}) {
            EXPECT_TRUE(method.report(errorCode));
            EXPECT_EQ(events.Take(), (std::vector<Event>{ExpectedEvent(method, errorCode, 2, "collaboration_service")}))
                << method.name << " " << errorCode;
        }
    }
    EXPECT_TRUE(log.Take().empty());
}

TEST(Radar, NamesTheHostOfTheBusinessUntilToldOtherwise)
{
    EventRecorder events;
    OstraRadar &radar = OstraRadar::GetInstance();
    EXPECT_EQ(&radar, &OstraRadar::GetInstance());
    const Method &open = Methods()[5];
    const std::map<int, std::string> hosts = {{1, "car_distributed_engine"},
                                              {2, "collaboration_service"},
                                              {3, "collaboration_service"},
                                              {10, "CollaborationFwk"}};
    for (const char *name : {"", "N"}) {
        radar.SetProcessName(name);
        for (int businessId = -1; businessId <= 11; ++businessId) {
            radar.SetCurBusinessId(businessId);
            const auto found = hosts.find(businessId);
            const std::string host = *name != '\0' ? name : found == hosts.end() ? "" : found->second;
            EXPECT_EQ(radar.GetProcessName(), host) << businessId;
            EXPECT_TRUE(open.report(0));
            EXPECT_EQ(events.Take(), (std::vector<Event>{ExpectedEvent(open, 0, businessId, host)}));
        }
    }
    radar.SetProcessName("");
}

TEST(Radar, PlainNamesReportConnectAndUpdate)
{
    EventRecorder events;
    OstraRadar::GetInstance().SetCurBusinessId(5);
    RadarWrite("F", 0, "P");
    ::UpdateRes("F", -3, "P");
    EXPECT_EQ(events.Take(),
              (std::vector<Event>{ExpectedEvent(Methods()[1], 0, 5, ""), ExpectedEvent(Methods()[2], -3, 5, "")}));
}

TEST(Radar, ReportsFromManyThreads)
{
    EventRecorder events;
    const auto reportSome = [] {
        for (int i = 0; i < 20; ++i) {
            Methods()[3].report(i % 2);
        }
    };
    std::thread other(reportSome);
    reportSome();
    other.join();
    EXPECT_EQ(events.Take().size(), 40U);
}

// The keys of the one event that the file declares, with their types.
std::map<std::string, std::string> DeclaredKeys()
{
    std::ifstream file(OSTRA_SOURCE_FOLDER "/hisysevent.yaml");
    const std::regex key(R"(  (\w+): \{type: (\w+), desc: .{3,128}\})");
    std::map<std::string, std::string> keys;
    std::string line;
    std::string heads;
    while (std::getline(file, line)) {
        std::smatch parts;
        if (std::regex_match(line, parts, key)) {
            keys[parts[1]] = parts[2];
        } else if (!line.empty() && line[0] != '#') {
            heads += line.substr(0, line.find(", desc")) + "|";
        }
    }
    EXPECT_EQ(heads, "domain: OSTRAADAPTER|OSTRA_ADAPTER_BEHAVIOR:|  __BASE: {type: BEHAVIOR, level: MINOR|");
    return keys;
}

TEST(Radar, WritesWhatTheEventFileDeclares)
{
    EventRecorder events;
    for (const Method &method : Methods()) {
        method.report(1);
    }
    std::map<std::string, std::string> written;
    for (const Event &event : events.Take()) {
        for (const auto &[key, value] : event) {
            written[key] = std::holds_alternative<std::string>(value) ? "STRING" : "INT32";
        }
    }
    EXPECT_EQ(written, DeclaredKeys());
}

// Last: it uses up the budget of each method.
TEST(Radar, TellsWhenThePlatformRefuses)
{
    for (const Method &method : Methods()) {
        for (int i = 0; i < 100; ++i) {
            HiSysEvent::Write(method.name, method.stage, OSTRA_DOMAIN, ADAPTER_BEHAVIOR_EVENT, HiSysEvent::BEHAVIOR);
        }
        LogRecorder log;
        EXPECT_FALSE(method.report(0)) << method.name;
        EXPECT_EQ(log.Take(), (LogLines{ErrorLine(method.name, std::string(method.nameInLog) + " error, res:-6")}));
    }
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
