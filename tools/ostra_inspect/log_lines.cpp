// SPDX-License-Identifier: Apache-2.0

#include "log_lines.h"

#include <cstdlib>
#include <utility>

#include "ostra_adapter_log.h"

using OHOS::DistributedHardware::OstraAdapter::LOG_PREFIX_TAG;

namespace {

constexpr char LEVEL_NAMES[][8] = {"debug", "info", "warning", "error", "fatal"};

std::vector<LogLine> g_lines;  // the tool has one thread

// "[tag][Function]:message" without the tag: "Function: message".
std::string WithoutTag(const std::string &message)
{
    const std::string begin = "[" + std::string(LOG_PREFIX_TAG) + "][";
    const size_t end = message.find("]:");
    if (message.rfind(begin, 0) != 0 || end == std::string::npos) {
        return message;
    }
    return message.substr(begin.size(), end - begin.size()) + ": " + message.substr(end + 2);
}

void Collect(LogType /* type */, LogLevel level, unsigned int /* domain */, const char * /* tag */, const char *message)
{
    g_lines.push_back({level, WithoutTag(message)});
}

}  // namespace

void CollectLog()
{
    setenv("OSTRA_HOST_LOG_LEVEL", "off", 0);
    LOG_SetCallback(Collect);
}

std::vector<LogLine> TakeLog()
{
    return std::exchange(g_lines, {});
}

std::string Reasons(const std::vector<LogLine> &lines, const std::string &otherwise)
{
    std::string reasons;
    for (const LogLine &line : lines) {
        if (line.level >= LOG_WARN) {
            reasons += (reasons.empty() ? "" : "; ") + line.text;
        }
    }
    return reasons.empty() ? otherwise : reasons;
}

Report LogReport(const std::vector<LogLine> &lines)
{
    Report list("log", Report::Shape::LIST);
    for (const LogLine &line : lines) {
        const std::string level = LEVEL_NAMES[line.level - LOG_DEBUG];
        Report entry;
        entry.Add("level", level);
        entry.Add("text", line.text);
        entry.shown = level + ": " + line.text;
        list.Add(std::move(entry));
    }
    return list;
}
