// SPDX-License-Identifier: Apache-2.0
//
// Watches the log of the process while it lives. One at a time; any thread may log meanwhile.

#ifndef TESTS_LOG_RECORDER_H
#define TESTS_LOG_RECORDER_H

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "hilog/log.h"

struct LogLine {
    LogType type;
    LogLevel level;
    unsigned int domain;
    std::string tag;
    std::string text;
};

inline bool operator==(const LogLine &a, const LogLine &b)
{
    return a.type == b.type && a.level == b.level && a.domain == b.domain && a.tag == b.tag && a.text == b.text;
}

inline std::ostream &operator<<(std::ostream &out, const LogLine &line)
{
    return out << "type " << line.type << ", level " << line.level << ", domain " << line.domain << ", tag " << line.tag
               << ": " << line.text;
}

using LogLines = std::vector<LogLine>;

// Those of the lines that the process's level lets through, which on a device does not include debug lines.
inline LogLines Loggable(LogLines lines)
{
    const auto isRefused = [](const LogLine &line) {
        return !HiLogIsLoggable(line.domain, line.tag.c_str(), line.level);
    };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isRefused), lines.end());
    return lines;
}

// The line that the library's function `function` logs at `level`.
inline LogLine LibraryLine(LogLevel level, const std::string &function, const std::string &message)
{
    return {LOG_CORE, level, 0xD004160, "OSTRA_ADAPTER", "[ostraadapterutils][" + function + "]:" + message};
}

inline LogLine ErrorLine(const std::string &function, const std::string &message)
{
    return LibraryLine(LOG_ERROR, function, message);
}

inline LogLine InfoLine(const std::string &function, const std::string &message)
{
    return LibraryLine(LOG_INFO, function, message);
}

class LogRecorder {
public:
    LogRecorder()
    {
        Take();
        LOG_SetCallback(Record);
    }

    ~LogRecorder()
    {
        LOG_SetCallback(nullptr);
    }

    LogRecorder(const LogRecorder &) = delete;
    LogRecorder &operator=(const LogRecorder &) = delete;

    // The lines since the last call.
    LogLines Take()
    {
        const std::lock_guard<std::mutex> lock(Mutex());
        LogLines taken;
        taken.swap(Lines());
        return taken;
    }

private:
    static void Record(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *message)
    {
        const std::lock_guard<std::mutex> lock(Mutex());
        Lines().push_back({type, level, domain, tag, message});
    }

    static std::mutex &Mutex()
    {
        static std::mutex mutex;
        return mutex;
    }

    static LogLines &Lines()
    {
        static LogLines lines;
        return lines;
    }
};

#endif  // TESTS_LOG_RECORDER_H
