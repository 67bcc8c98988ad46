// SPDX-License-Identifier: Apache-2.0

#include "ostra_radar.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <thread>
#include <vector>

#include "ostra_radar_adapter.h"
#include "support/log_recorder.h"
#include "support/platform_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using Events = std::vector<std::string>;

Events Taken()
{
    return PlatformRecorder::GetInstance().Take();
}

OstraRadar &Radar()
{
    return OstraRadar::GetInstance();
}

struct Method {
    const char *name;
    std::function<bool(int)> report;  // takes the error code
    int stage;
    bool callsPackage = false;
    int state = 0;
    const char *nameInLog = "UpdatePortRes";
};

const Method METHODS[] = {
    {"ServiceStartRes", [](int e) { return Radar().ServiceStartRes("F", 7, "ignored", e); }, 1, false, 1,
     "ServiceStartRes"},
    {"ConnectDeviceRes", [](int e) { return Radar().ConnectDeviceRes("F", e, "P"); }, 2, true, 0, "ConnectDeviceRes"},
    {"UpdateRes", [](int e) { return Radar().UpdateRes("F", e, "P"); }, 3, true, 0, "UpdateRes"},
    {"UpdatePortRes", [](int e) { return Radar().UpdatePortRes("F", e); }, 4},
    {"EnableVirtualRes", [](int e) { return Radar().EnableVirtualRes("F", e); }, 5},
    {"AudioOpenRes", [](int e) { return Radar().AudioOpenRes("F", e); }, 6},
    {"AudioCloseRes", [](int e) { return Radar().AudioCloseRes("F", e); }, 7},
    {"DisconnectDeviceRes", [](int e) { return Radar().DisconnectDeviceRes("F", e, "P"); }, 8, true},
    {"ServiceStopRes", [](int e) { return Radar().ServiceStopRes("F", e); }, 9, false, 2, "ServiceStopRes"},
    {"LoadSinkServiceRes", [](int e) { return Radar().LoadSinkServiceRes("F", e); }, 10, false, 0,
     "LoadSinkServiceRes"},
    {"UnLoadSinkServiceRes", [](int e) { return Radar().UnLoadSinkServiceRes("F", e); }, 11, false, 0,
     "UnLoadSinkServiceRes"},
};

std::string ExpectedEvent(const Method &method, int errorCode, int businessId, const std::string &host)
{
    const auto number = [](const char *key, int value) {
        return ",\"" + std::string(key) + "\":" + std::to_string(value);
    };
    return R"({"domain_":"OSTRAADAPTER","name_":"OSTRA_ADAPTER_BEHAVIOR","type_":4,"ORG_PKG":"ostra_adapter","FUNC":"F")" +
           std::string(method.callsPackage ? R"(,"TO_CALL_PKG":"P")" : "") + R"(,"HOST_PKG":")" + host + '"' +
           number("BIZ_SCENE", method.stage == 1 ? 7 : businessId) + number("BIZ_STAGE", method.stage) +
           number("STAGE_RES", errorCode == 0 ? 1 : 2) + (method.state != 0 ? number("BIZ_STATE", method.state) : "") +
           (errorCode != 0 ? number("ERROR_CODE", errorCode) : "") + "}";
}

TEST(Radar, ReportsEachStepWithItsKeysInOrder)
{
    EXPECT_EQ(&Radar(), &Radar());
    Taken();  // starts to listen
    LogRecorder log;
    EXPECT_TRUE(METHODS[9].report(0));
    EXPECT_EQ(Taken(), (Events{ExpectedEvent(METHODS[9], 0, -1, "")}));
    Radar().SetCurBusinessId(2);
    for (const Method &method : METHODS) {
        for (int errorCode : {0, -1, 1, INT32_MIN}) {
            EXPECT_TRUE(method.report(errorCode));
            EXPECT_EQ(Taken(), (Events{ExpectedEvent(method, errorCode, 2, "collaboration_service")}));
        }
    }
    Radar().SetCurBusinessId(5);
    RadarWrite("F", 0, "P");
    ::UpdateRes("F", -3, "P");
    EXPECT_EQ(Taken(), (Events{ExpectedEvent(METHODS[1], 0, 5, ""), ExpectedEvent(METHODS[2], -3, 5, "")}));
    EXPECT_TRUE(log.Take().empty());
}

TEST(Radar, NamesTheHostOfTheBusinessUntilToldOtherwise)
{
    const std::map<int, std::string> hosts = {{1, "car_distributed_engine"},
                                              {2, "collaboration_service"},
                                              {3, "collaboration_service"},
                                              {10, "CollaborationFwk"}};
    for (const std::string name : {"", "N"}) {
        Radar().SetProcessName(name);
        for (int businessId = -1; businessId <= 11; ++businessId) {
            Radar().SetCurBusinessId(businessId);
            const std::string host = !name.empty() ? name : hosts.count(businessId) == 0 ? "" : hosts.at(businessId);
            EXPECT_EQ(Radar().GetProcessName(), host);
            EXPECT_TRUE(METHODS[5].report(0));
            EXPECT_EQ(Taken(), (Events{ExpectedEvent(METHODS[5], 0, businessId, host)}));
        }
    }
    Radar().SetProcessName("");
}

TEST(Radar, ReportsFromManyThreads)
{
    const auto reportSome = [] {
        for (int i = 0; i < 20; ++i) {
            METHODS[3].report(i % 2);
        }
    };
    std::thread other(reportSome);
    reportSome();
    other.join();
    EXPECT_EQ(Taken().size(), 40U);
}

TEST(Radar, WritesWhatTheEventFileDeclares)
{
    using Types = std::map<std::string, std::string>;  // by key
    for (const Method &method : METHODS) {
        method.report(1);
    }
    Types written;
    const std::regex ownKey(R"#("([A-Z_]+)":("|-?\d))#");
    for (const std::string &event : Taken()) {
        for (std::sregex_iterator key(event.begin(), event.end(), ownKey), end; key != end; ++key) {
            written[(*key)[1]] = (*key)[2] == "\"" ? "STRING" : "INT32";
        }
    }
    Types declared;
    std::string heads;
    std::ifstream file(OSTRA_SOURCE_FOLDER "/hisysevent.yaml");
    const std::regex declaration(R"(  (\w+): \{type: (\w+), desc: .{3,128}\})");
    for (std::string line; std::getline(file, line);) {
        std::smatch parts;
        if (std::regex_match(line, parts, declaration)) {
            declared[parts[1]] = parts[2];
        } else if (!line.empty() && line[0] != '#') {
            heads += line.substr(0, line.find(", desc")) + "|";
        }
    }
    EXPECT_EQ(heads, "domain: OSTRAADAPTER|OSTRA_ADAPTER_BEHAVIOR:|  __BASE: {type: BEHAVIOR, level: MINOR|");
    EXPECT_EQ(written, declared);
}

// Last: it uses up the budget of each method.
TEST(Radar, TellsWhenThePlatformRefuses)
{
    using HiviewDFX::HiSysEvent;
    for (const Method &method : METHODS) {
        LogRecorder log;
        EXPECT_TRUE(method.report(0)) << "the methods before have used up budgets of their own";
        for (int i = 0; i < 100; ++i) {
            HiSysEvent::Write(method.name, method.stage, OSTRA_DOMAIN, ADAPTER_BEHAVIOR_EVENT, HiSysEvent::BEHAVIOR);
        }
        EXPECT_FALSE(method.report(0)) << method.name;
        EXPECT_EQ(log.Take(), (LogLines{ErrorLine(method.name, std::string(method.nameInLog) + " error, res:-6")}));
    }
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
