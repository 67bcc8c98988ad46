// SPDX-License-Identifier: Apache-2.0
//
// Writes log messages and events and reads parameters, for host_environment_test.sh, which sets the environment
// variables of the host platform and checks what is printed here.

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

#include "hilog/log.h"
#include "hisysevent_manager.h"
#include "parameter.h"

using namespace OHOS::HiviewDFX;

namespace {

bool g_isDiskFull = false;
int g_writes = 0;

struct Counter : HiSysEventListener {
    void OnEvent(std::shared_ptr<HiSysEventRecord> /*event*/) override
    {
        ++count;
    }

    void OnServiceDied() override
    {
    }

    int count = 0;
};

template <typename Value>
int Write(Value value)
{
    static int64_t line = 0;  // a new call site for each event, to stay below the rate limit
    return HiSysEvent::Write("Write", ++line, "DOMAIN", "EVENT", HiSysEvent::FAULT, "T", value);
}

}  // namespace

// Replaces the function of the C library.
extern "C" ssize_t write(int descriptor, const void *data, size_t size)
{
    ++g_writes;
    errno = ENOSPC;
    return g_isDiskFull ? -1 : syscall(SYS_write, descriptor, data, size);
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

    const auto listener = std::make_shared<Counter>();
    std::vector<ListenerRule> rules = {{"", ""}};
    HiSysEventManager::AddListener(listener, rules);
    const int first = Write("a");
    std::cout << "results " << first << ' ' << Write("b") << " received " << listener->count;
    HiSysEventManager::RemoveListener(listener);
    g_isDiskFull = true;  // which only a configured output notices
    for (int i = 0; i < 101; ++i) {
        Write(i);
    }
    g_isDiskFull = false;
    listener->count = 0;
    HiSysEventManager::AddListener(listener, rules);
    Write("c");
    std::cout << " then " << listener->count << '\n';

    for (const char *name : {"test.file", "test.both", "test.semicolon", "test.list", "test.empty"}) {
        char value[128];
        GetParameter(name, "unset", value, sizeof(value));
        std::cout << name << " is " << value << '\n';
    }
}
