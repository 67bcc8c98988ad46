// SPDX-License-Identifier: Apache-2.0

#include "ostra_radar.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <regex>
#include <thread>

#include "hisysevent.h"
#include "ostra_radar_adapter.h"
#include "support/event_recorder.h"
#include "support/session.h"

const char *const SESSIONS =
#include "sessions/radar_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

std::string g_events;  // all so far

class Radar : public Session {
protected:
    static void SetUpTestSuite()
    {
        static const bool isListening = [] {
            EventRecorder::Start([](const std::string &event) {
                Left(event);
                g_events += event;
            });
            return true;
        }();
        static_cast<void>(isListening);
    }

    void TearDown() override
    {
        radar_.SetProcessName("");
        radar_.SetCurBusinessId(-1);
        Session::TearDown();
    }

    void ReportAll(const std::string &function, int error)
    {
        CALL(radar_.ServiceStartRes(function, 7, "ignored", error));
        CALL(radar_.ConnectDeviceRes(function, error, "P"));
        CALL(radar_.UpdateRes(function, error, "P"));
        CALL(radar_.UpdatePortRes(function, error));
        CALL(radar_.EnableVirtualRes(function, error));
        CALL(radar_.AudioOpenRes(function, error));
        CALL(radar_.AudioCloseRes(function, error));
        CALL(radar_.DisconnectDeviceRes(function, error, "P"));
        CALL(radar_.ServiceStopRes(function, error));
        CALL(radar_.LoadSinkServiceRes(function, error));
        CALL(radar_.UnLoadSinkServiceRes(function, error));
    }

    OstraRadar &radar_ = OstraRadar::GetInstance();
};

TEST_F(Radar, ReportsEachStepWithItsKeysInOrder)
{
    SHOW(&radar_ == &OstraRadar::GetInstance(), OSTRA_DOMAIN, ADAPTER_BEHAVIOR_EVENT, ORG_PKG_NAME, SOFTBUS_PKG_NAME);
    radar_.SetCurBusinessId(2);
    Note("success");
    ReportAll("F", 0);
    Note("failure -3");
    ReportAll("F", -3);
    CALL(RadarWrite("F", 1, "P"));
    CALL(::UpdateRes("F", INT32_MIN, "P"));
}

TEST_F(Radar, TellsWhatThePlatformRefuses)
{
    ReportAll(std::string(500000, 'F'), 0);  // over the size of an event
}

TEST_F(Radar, NamesTheHostOfTheBusinessUntilToldOtherwise)
{
    for (int businessId = -1; businessId <= 11; ++businessId) {
        radar_.SetCurBusinessId(businessId);
        if (!radar_.GetProcessName().empty()) {
            SHOW(businessId, radar_.GetProcessName());
        }
    }
    radar_.SetProcessName("N");
    radar_.SetCurBusinessId(1);
    SHOW(radar_.GetProcessName());
    CALL(radar_.AudioOpenRes("F", 0));
}

// In a process of its own, since the reporter is one for all tests.
TEST_F(Radar, StartsWithoutABusiness)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto report = [this] {
        radar_.AudioOpenRes("F", 0);
        std::fputs(g_events.c_str(), stderr);
        _exit(0);
    };
    EXPECT_EXIT(report(), ::testing::ExitedWithCode(0), R"("HOST_PKG":"","BIZ_SCENE":-1,)");
}

TEST_F(Radar, ReportsFromManyThreads)
{
    const auto reportSome = [this] {
        for (int i = 0; i < 20; ++i) {
            EXPECT_TRUE(radar_.UpdatePortRes("F", i % 2));
        }
    };
    Unrecorded([&] {
        std::thread other(reportSome);
        reportSome();
        other.join();
    });
}

TEST_F(Radar, WritesWhatTheEventFileDeclares)
{
    using Types = std::map<std::string, std::string>;  // by key
    Types written;
    const std::regex ownKey(R"#("([A-Z_]+)":("|-?\d))#");
    Unrecorded([&] {
        g_events.clear();
        ReportAll("F", 1);
    });
    for (std::sregex_iterator key(g_events.begin(), g_events.end(), ownKey), end; key != end; ++key) {
        written[(*key)[1]] = (*key)[2] == "\"" ? "STRING" : "INT32";
    }
    Types declared;
    std::ifstream file(OSTRA_SOURCE_FOLDER "/hisysevent.yaml");
    const std::regex declaration(R"(  (\w+): \{type: (\w+), desc: .{3,128}\})");
    for (std::string line; std::getline(file, line);) {
        std::smatch parts;
        if (std::regex_match(line, parts, declaration)) {
            declared[parts[1]] = parts[2];
        } else if (!line.empty() && line[0] != '#') {
            Note(line);
        }
    }
    EXPECT_EQ(written, declared);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
