// SPDX-License-Identifier: Apache-2.0
//
// Writes log messages and events and reads parameters, for host_environment_test.sh, which sets the environment
// variables of the host platform and checks the output of this program.

#include <unistd.h>

#include <iostream>
#include <thread>

#include "hilog/log.h"
#include "parameter.h"
#include "support/event_listener.h"

using namespace OHOS::HiviewDFX;

void Run()
{
    LOG_SetCallback([](LogType, LogLevel, unsigned int, const char *, const char *message) { std::cout << message; });
    std::cout << "ids " << getpid() << ' ' << gettid() << "\ndelivered ";
    for (int i = LOG_DEBUG; i <= LOG_FATAL; ++i) {
        HiLogPrint(LOG_CORE, static_cast<LogLevel>(i), 0xD004160, "TAG", "%{public}d", i);
    }

    std::cout << "\nresults";
    const auto listener = std::make_shared<EventListener>();
    listener->act = [](const EventListener::Event &) {
        std::cout << " received";
    };
    std::vector<ListenerRule> rules = {{"", ""}};
    HiSysEventManager::AddListener(listener, rules);
    for (const char *value : {"a", "b"}) {
        const int result = HiSysEventWrite(HiSysEvent::Domain::DSOFTBUS, "EVENT", HiSysEvent::FAULT, "T", value);
        std::cout << ' ' << result;
    }

    for (const char *name : {"test.file", "test.both", "test.semicolon", "test.list", "test.empty"}) {
        char value[128];
        GetParameter(name, "unset", value, sizeof(value));
        std::cout << '\n' << name << " is " << value;
    }
    std::cout << '\n';
}

int main()
{
    std::thread(Run).join();  // its thread id is not the process id
}
