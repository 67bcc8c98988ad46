// SPDX-License-Identifier: Apache-2.0
//
// Writes log messages and events and reads parameters, for host_environment_test.sh, which sets the environment
// variables of the host platform and checks the output of this program.

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <memory>
#include <string>

#include "hilog/log.h"
#include "parameter.h"
#include "support/event_listener.h"

using namespace OHOS::HiviewDFX;

namespace {

int g_writes = 0;

int Write(const char *value)
{
    return HiSysEvent::Write(__func__, __LINE__, "DOMAIN", "EVENT", HiSysEvent::FAULT, "T", value);
}

}  // namespace

// Replaces the function of the C library.
extern "C" ssize_t write(int descriptor, const void *data, size_t size)
{
    ++g_writes;
    return syscall(SYS_write, descriptor, data, size);
}

int main()
{
    LOG_SetCallback([](LogType, LogLevel, unsigned int, const char *, const char *message) {
        std::cout << message;
        errno = EBADF;
    });
    std::cout << "process " << getpid() << "\ndelivered ";
    g_writes = 0;
    errno = 0;
    for (int i = LOG_DEBUG; i <= LOG_FATAL; ++i) {
        HiLogPrint(LOG_CORE, static_cast<LogLevel>(i), 0xD004160, "TAG", "%{public}d", i);
    }
    const bool isErrnoKept = errno == 0;
    LOG_SetCallback(nullptr);
    std::cout << " in " << g_writes << " writes, errno is " << (isErrnoKept ? "unchanged\n" : "changed\n");

    int received = 0;
    const auto listener = std::make_shared<EventListener>();
    listener->act = [&](const EventListener::Event &) {
        ++received;
    };
    std::vector<ListenerRule> rules = {{"", ""}};
    HiSysEventManager::AddListener(listener, rules);
    const int first = Write("a");
    std::cout << "results " << first << ' ' << Write("b") << " received " << received << '\n';

    for (const char *name : {"test.file", "test.both", "test.semicolon", "test.list", "test.empty"}) {
        char value[128];
        GetParameter(name, "unset", value, sizeof(value));
        std::cout << name << " is " << value << '\n';
    }
}
