// SPDX-License-Identifier: Apache-2.0

#include <cstdlib>
#include <utility>

#include "hilog/log.h"
#include "inspect.h"
#include "ostra_adapter_log.h"

using OHOS::DistributedHardware::OstraAdapter::LOG_PREFIX_TAG;

namespace {

constexpr size_t MAX_MESSAGES = 10;  // the library may log each element of an input

std::vector<std::string> g_messages;  // the tool is single-threaded

// Shortens "[tag][Function]:message" to "Function: message".
void OnMessage(LogType /* type */, LogLevel level, unsigned int /* domain */, const char * /* tag */, const char *line)
{
    if (level < LOG_WARN || g_messages.size() == MAX_MESSAGES) {
        return;
    }
    std::string message = line;
    const std::string begin = "[" + std::string(LOG_PREFIX_TAG) + "][";
    const size_t end = message.find("]:");
    if (message.rfind(begin, 0) == 0 && end != std::string::npos) {
        message = message.substr(begin.size(), end - begin.size()) + ": " + message.substr(end + 2);
    }
    g_messages.push_back(message);
}

}  // namespace

void CollectLog()
{
    setenv("OSTRA_HOST_LOG_LEVEL", "off", 0);
    LOG_SetCallback(OnMessage);
}

std::string TakeLogMessages()
{
    std::string messages;
    for (const std::string &message : std::exchange(g_messages, {})) {
        messages += (messages.empty() ? "" : "; ") + message;
    }
    return messages;
}
