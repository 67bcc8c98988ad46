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

namespace ostra::host {
namespace {

constexpr unsigned int DOMAIN_LIMIT = 0xD0FFFFF;  // the first invalid domain
constexpr unsigned int MAX_APP_DOMAIN = 0xFFFF;
constexpr int LEVEL_OFF = LOG_LEVEL_MAX;
constexpr int LEVEL_UNSET = LOG_LEVEL_MIN;
constexpr char LEVEL_VARIABLE[] = "OSTRA_HOST_LOG_LEVEL";
constexpr size_t KEY_SIZE = 128;  // longer than any valid parameter name, so that a truncated name is invalid

// Returns the minimum level that is written to standard error.
int ParseLevelVariable()
{
    static constexpr std::pair<std::string_view, int> levels[] = {{"debug", LOG_DEBUG}, {"info", LOG_INFO},
                                                                  {"warn", LOG_WARN},   {"error", LOG_ERROR},
                                                                  {"fatal", LOG_FATAL}, {"off", LEVEL_OFF}};
    const char *value = std::getenv(LEVEL_VARIABLE);
    if (value == nullptr) {
        return LEVEL_UNSET;
    }
    for (const auto &[name, level] : levels) {
        if (name == value) {
            return level;
        }
    }
    std::fprintf(stderr, "%s=%s is ignored: expected debug, info, warn, error, fatal or off\n", LEVEL_VARIABLE, value);
    return LEVEL_UNSET;
}

int MinWrittenLevel()
{
    static const int level = ParseLevelVariable();
    return level;
}

// Returns the level that the parameter `name` sets or, if it sets none, the parameter "persist.sys." + `name`.
int LevelOfParameter(const char *name, const char *fallback = "")
{
    constexpr std::string_view letters = "DIWEFX";
    static_assert(LOG_DEBUG + letters.size() - 1 == LEVEL_OFF);
    for (const char *prefix : {"", "persist.sys."}) {
        char key[KEY_SIZE];
        std::snprintf(key, sizeof(key), "%s%s", prefix, name);
        char value[2] = "";  // one letter: GetParameter rejects longer values
        GetParameter(key, *prefix == '\0' ? "" : fallback, value, sizeof(value));
        if (const size_t at = letters.find(value); *value != '\0' && at != std::string_view::npos) {
            return LOG_DEBUG + static_cast<int>(at);
        }
    }
    return LEVEL_UNSET;
}

int ReadMinLevel(unsigned int domain, const char *tag)
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
    // Without this default, OSTRA_HOST_LOG_LEVEL=debug would write no DEBUG messages.
    const char *const globalDefault = MinWrittenLevel() == LOG_DEBUG ? "D" : "I";
    return level != LEVEL_UNSET ? level : LevelOfParameter("hilog.loggable.global", globalDefault);
}

// Returns the minimum level according to the parameters. A thread mostly logs with one tag, so each thread caches
// its last result.
int MinParameterLevel(unsigned int domain, const char *tag)
{
    struct CacheEntry {
        uint64_t changes;
        unsigned int domain;
        char tag[32];
        int level;
    };
    static thread_local CacheEntry last = {UINT64_MAX, 0, "", LEVEL_UNSET};
    const uint64_t changes = CountParameterChanges();
    // A truncated tag never compares equal, so the cache is never used for it.
    if (last.changes != changes || last.domain != domain || std::strncmp(last.tag, tag, sizeof(last.tag)) != 0) {
        last.level = ReadMinLevel(domain, tag);
        last.changes = changes;
        last.domain = domain;
        std::snprintf(last.tag, sizeof(last.tag), "%s", tag);
    }
    return last.level;
}

// Preference and level of HiLogSetAppLogLevel, packed into one integer so that both change atomically.
constexpr int PREFERENCE_UNIT = 16;
std::atomic<int> g_appLevel{UNSET_LOGLEVEL * PREFERENCE_UNIT};

int MinLoggableLevel(unsigned int domain, const char *tag)
{
    const int parameterLevel = MinParameterLevel(domain, tag);
    const int app = g_appLevel.load();
    const int appLevel = app % PREFERENCE_UNIT;
    if (domain > MAX_APP_DOMAIN || app / PREFERENCE_UNIT == UNSET_LOGLEVEL) {
        return parameterLevel;
    }
    return app / PREFERENCE_UNIT == PREFER_CLOSE_LOG ? std::max(parameterLevel, appLevel)
                                                     : std::min(parameterLevel, appLevel);
}

}  // namespace

bool IsLevelWritten(LogLevel level)
{
    return level >= MinWrittenLevel();
}

}  // namespace ostra::host

using namespace ostra::host;

bool HiLogIsLoggable(unsigned int domain, const char *tag, LogLevel level)
{
    if (tag == nullptr || level < LOG_DEBUG || level >= LOG_LEVEL_MAX || domain >= DOMAIN_LIMIT) {
        return false;
    }
    return level >= MinLoggableLevel(domain, tag);
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
