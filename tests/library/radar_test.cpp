// SPDX-License-Identifier: Apache-2.0

#include "ostra_radar.h"

#include <memory>
#include <regex>
#include <thread>

#include "hisysevent.h"
#include "ostra_radar_adapter.h"
#include "support/event_listener.h"
#include "support/session.h"

const char *const SESSIONS =
#include "radar_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

bool g_isListening = true;

// Notes an event without what the platform adds and what changes from run to run.
void NoteEvent(const EventListener::Event &event)
{
    static const std::regex changing("\"(time|tz|pid|tid|uid)_\":[^,]*,");
    if (g_isListening) {
        Session::Left(std::regex_replace(event->AsJson(), changing, ""));
    }
}

class Radar : public Session {
protected:
    // Events of other places make the platform's limiter forget those of the library that it has counted.
    void SetUp() override
    {
        static const bool isListening = [] {
            const auto listener = std::make_shared<EventListener>();
            listener->act = NoteEvent;
            std::vector<HiviewDFX::ListenerRule> all = {{"", ""}};
            return HiviewDFX::HiSysEventManager::AddListener(listener, all) == 0;
        }();
        ASSERT_TRUE(isListening);
        for (int line = 0; line < 30; ++line) {
            HiviewDFX::HiSysEvent::Write("elsewhere", line, "OTHER", "OTHER", HiviewDFX::HiSysEvent::BEHAVIOR);
        }
        Session::SetUp();
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
    ReportAll("F", 0);
    CALL(radar_.ServiceStopRes("F", -3));
    CALL(radar_.ConnectDeviceRes("Connect", -3, "dsoftbus"));
    CALL(radar_.ConnectDeviceRes(std::string("a\0b", 3), 0, std::string("p\0q", 3)));  // zeros alone are dropped
    CALL(RadarWrite("F", 1, "P"));
    CALL(::UpdateRes("F", INT32_MIN, "P"));
    radar_.SetCurBusinessId(-1);
    CALL(radar_.ServiceStartRes("OnStart", 7, "ignored", 0));
}

// Each operation has a budget of its own, and so have its failures: no success hides one.
TEST_F(Radar, TellsWhatThePlatformDrops)
{
    g_isListening = false;  // which would take its time
    Unrecorded([this] {
        for (int i = 0; i < 100; ++i) {
            ReportAll("F", 0);
        }
    });
    ReportAll("F", 0);
    g_isListening = true;
    CALL(radar_.AudioOpenRes("F", -1));
    g_isListening = false;
    CALL(radar_.AudioOpenRes(std::string(262145, 'x'), -1));  // sent, with a warning
    g_isListening = true;
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

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
