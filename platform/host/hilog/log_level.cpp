// SPDX-License-Identifier: Apache-2.0

#include "hilog/log_level.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "parameter.h"
#include "parameter/parameter_changes.h"

namespace {

constexpr unsigned int FIRST_REFUSED_DOMAIN = 0xD0FFFFF;
constexpr unsigned int LAST_APP_DOMAIN = 0xFFFF;
constexpr int LEVEL_OFF = LOG_LEVEL_MAX;
constexpr int LEVEL_UNSET = LOG_LEVEL_MIN;
constexpr char LEVEL_VARIABLE[] = "OSTRA_HOST_LOG_LEVEL";
constexpr size_t KEY_SIZE = 128;  // more than a parameter's name can have: one that is cut is no name

// The lowest level that is written.
int ReadEnvironment()
{
    static constexpr std::pair<std::string_view, int> levels[] = {{"debug", LOG_DEBUG}, {"info", LOG_INFO},
                                                                  {"warn", LOG_WARN},   {"error", LOG_ERROR},
                                                                  {"fatal", LOG_FATAL}, {"off", LEVEL_OFF}};
    const char *wanted = std::getenv(LEVEL_VARIABLE);
    if (wanted == nullptr) {
        return LEVEL_UNSET;
    }
    for (const auto &[name, level] : levels) {
        if (name == wanted) {
            return level;
        }
    }
    std::fprintf(stderr, "%s=%s is none of debug, info, warn, error, fatal, off; taken as unset\n", LEVEL_VARIABLE,
                 wanted);
    return LEVEL_UNSET;
}

int LowestWritten()
{
    static const int level = ReadEnvironment();
    return level;
}

// The level that the parameter `name`, or else the one of that name behind "persist.sys.", is set to.
int LevelOfParameter(const char *name, const char *fallback = "")
{
    constexpr std::string_view letters = "DIWEFX";
    static_assert(LOG_DEBUG + letters.size() - 1 == LEVEL_OFF);
    for (const char *prefix : {"", "persist.sys."}) {
        char key[KEY_SIZE];
        std::snprintf(key, sizeof(key), "%s%s", prefix, name);
        char value[2] = "";  // a letter; what is longer is none
        GetParameter(key, *prefix == '\0' ? "" : fallback, value, sizeof(value));
        if (const size_t at = letters.find(value); *value != '\0' && at != std::string_view::npos) {
            return LOG_DEBUG + static_cast<int>(at);
        }
    }
    return LEVEL_UNSET;
}

int ReadLowestLevel(unsigned int domain, const char *tag)
{
    char name[KEY_SIZE];
    std::snprintf(name, sizeof(name), "hilog.loggable.tag.%s", tag);
    int level = LevelOfParameter(name);
    for (const char *format : {"hilog.loggable.domain.%x", "hilog.loggable.domain.%X"}) {
        if (level == LEVEL_UNSET) {
            std::snprintf(name, sizeof(name), format, domain);
            level = LevelOfParameter(name);
        }
    }
    // The output that debug messages are wanted on gets them, too.
    const char *const standard = LowestWritten() == LOG_DEBUG ? "D" : "I";
    return level != LEVEL_UNSET ? level : LevelOfParameter("hilog.loggable.global", standard);
}

// The lowest level that the parameters let through. A thread mostly logs under one tag, so it remembers the last one.
int LowestLevel(unsigned int domain, const char *tag)
{
    struct Remembered {
        uint64_t changes;
        unsigned int domain;
        char tag[32];
        int level;
    };
    static thread_local Remembered last = {UINT64_MAX, 0, "", LEVEL_UNSET};
    const uint64_t changes = CountParameterChanges();
    // A tag that was cut never compares equal.
    if (last.changes != changes || last.domain != domain || std::strncmp(last.tag, tag, sizeof(last.tag)) != 0) {
        last.level = ReadLowestLevel(domain, tag);
        last.changes = changes;
        last.domain = domain;
        std::snprintf(last.tag, sizeof(last.tag), "%s", tag);
    }
    return last.level;
}

// What the application asked for: preference and level in one number, so that both change at once.
constexpr int PREFERENCE_UNIT = 16;
std::atomic<int> g_appLevel{UNSET_LOGLEVEL * PREFERENCE_UNIT};

}  // namespace

bool IsLevelWritten(LogLevel level)
{
    return level >= LowestWritten();
}

bool HiLogIsLoggable(unsigned int domain, const char *tag, LogLevel level)
{
    if (tag == nullptr || level <= LOG_LEVEL_MIN || level >= LOG_LEVEL_MAX || domain >= FIRST_REFUSED_DOMAIN) {
        return false;
    }
    int lowest = std::max<int>(LowestLevel(domain, tag), LOG_DEBUG);
    const int app = g_appLevel.load();
    const int preference = app / PREFERENCE_UNIT;
    const int appLevel = app % PREFERENCE_UNIT;
    if (domain <= LAST_APP_DOMAIN && preference != UNSET_LOGLEVEL) {
        lowest = preference == PREFER_CLOSE_LOG ? std::max(lowest, appLevel) : std::min(lowest, appLevel);
    }
    return level >= lowest;
}

void HiLogSetAppLogLevel(LogLevel level, PreferStrategy prefer)
{
    if (level > LOG_LEVEL_MIN && level < LOG_LEVEL_MAX && prefer >= UNSET_LOGLEVEL && prefer <= PREFER_OPEN_LOG) {
        g_appLevel.store(static_cast<int>(prefer) * PREFERENCE_UNIT + static_cast<int>(level));
    }
}

void HiLogSetAppMinLogLevel(LogLevel level)
{
    HiLogSetAppLogLevel(level, PREFER_CLOSE_LOG);
}
