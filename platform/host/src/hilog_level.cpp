// SPDX-License-Identifier: Apache-2.0

#include "hilog_level.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "parameter.h"
#include "parameter_changes.h"

namespace {

constexpr unsigned int FIRST_REFUSED_DOMAIN = 0xD0FFFFF;
constexpr unsigned int LAST_APP_DOMAIN = 0xFFFF;
constexpr int LEVEL_OFF = LOG_LEVEL_MAX;
constexpr int LEVEL_UNSET = LOG_LEVEL_MIN;
constexpr char LEVEL_VARIABLE[] = "OSTRA_HOST_LOG_LEVEL";
constexpr size_t PARAMETER_SIZE = 97;  // of a name or a value with its zero byte

struct OutputLevel {
    int lowest;              // that is written
    const char *deviceWide;  // the default of the device-wide parameter
};

OutputLevel ReadEnvironment()
{
    struct NamedLevel {
        std::string_view name;
        OutputLevel level;
    };
    static constexpr NamedLevel levels[] = {{"debug", {LOG_DEBUG, "D"}}, {"info", {LOG_INFO, "I"}},
                                            {"warn", {LOG_WARN, "I"}},   {"error", {LOG_ERROR, "I"}},
                                            {"fatal", {LOG_FATAL, "I"}}, {"off", {LEVEL_OFF, "I"}}};
    constexpr OutputLevel everything = {LEVEL_UNSET, "I"};
    const char *wanted = std::getenv(LEVEL_VARIABLE);
    if (wanted == nullptr) {
        return everything;
    }
    for (const NamedLevel &entry : levels) {
        if (entry.name == wanted) {
            return entry.level;
        }
    }
    std::fprintf(stderr, "%s=%s is none of debug, info, warn, error, fatal, off; taken as unset\n", LEVEL_VARIABLE,
                 wanted);
    return everything;
}

const OutputLevel &GetOutputLevel()
{
    static const OutputLevel level = ReadEnvironment();
    return level;
}

// The level that the parameter `name`, or else the one of that name behind "persist.sys.", is set to.
int LevelOfParameter(const char *name, const char *fallback = "")
{
    constexpr std::string_view letters = "DIWEFX";
    static_assert(LOG_DEBUG + letters.size() - 1 == LEVEL_OFF);
    for (const char *prefix : {"", "persist.sys."}) {
        char key[PARAMETER_SIZE + 1];
        char value[PARAMETER_SIZE];
        const int length = std::snprintf(key, sizeof(key), "%s%s", prefix, name);
        const char *standard = *prefix == '\0' ? "" : fallback;
        if (length < 0 || static_cast<size_t>(length) >= sizeof(key) ||
            GetParameter(key, standard, value, sizeof(value)) != 1) {
            continue;
        }
        if (const size_t at = letters.find(value[0]); at != std::string_view::npos) {
            return LOG_DEBUG + static_cast<int>(at);
        }
    }
    return LEVEL_UNSET;
}

int ReadLowestLevel(unsigned int domain, const char *tag)
{
    char name[2 * PARAMETER_SIZE];
    std::snprintf(name, sizeof(name), "hilog.loggable.tag.%s", tag);
    int level = LevelOfParameter(name);
    for (const char *format : {"hilog.loggable.domain.%x", "hilog.loggable.domain.%X"}) {
        if (level == LEVEL_UNSET) {
            std::snprintf(name, sizeof(name), format, domain);
            level = LevelOfParameter(name);
        }
    }
    return level != LEVEL_UNSET ? level : LevelOfParameter("hilog.loggable.global", GetOutputLevel().deviceWide);
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
    static thread_local Remembered last = {0, 0, "", LEVEL_UNSET};
    const size_t size = std::strlen(tag) + 1;
    const bool canRemember = size <= sizeof(last.tag);
    const uint64_t changes = CountParameterChanges();
    // A level of 0 cannot be told from nothing remembered: it is read each time.
    if (canRemember && last.level != LEVEL_UNSET && last.changes == changes && last.domain == domain &&
        std::memcmp(last.tag, tag, size) == 0) {
        return last.level;
    }
    const int level = ReadLowestLevel(domain, tag);
    if (canRemember) {
        last.changes = changes;
        last.domain = domain;
        std::memcpy(last.tag, tag, size);
        last.level = level;
    }
    return level;
}

// What the application asked for: preference and level in one number, so that both change at once.
constexpr int PREFERENCE_UNIT = 16;
std::atomic<int> g_appLevel{UNSET_LOGLEVEL * PREFERENCE_UNIT};

}  // namespace

bool IsLevelWritten(LogLevel level)
{
    return level >= GetOutputLevel().lowest;
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
