// SPDX-License-Identifier: Apache-2.0

#include "hisysevent.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "hisysevent_delivery.h"

namespace OHOS::HiviewDFX {
namespace {

constexpr int BAD_DOMAIN_NAME = -1;
constexpr int BAD_EVENT_NAME = -2;
constexpr int BAD_KEY = -3;
constexpr int OVER_SIZE = -4;
constexpr int SEND_FAILED = -5;
constexpr int TOO_OFTEN = -6;

constexpr size_t LONGEST_DOMAIN_NAME = 16;
constexpr size_t LONGEST_EVENT_NAME = 32;
constexpr size_t LONGEST_KEY = 48;
constexpr size_t LARGEST_EVENT = size_t{384} * 1024;
constexpr size_t NUMBER_SIZE = 8;

constexpr int64_t NS_PER_SECOND = 1000000000;
constexpr int64_t NS_PER_MS = 1000000;

constexpr uint32_t MAX_EVENTS_PER_PERIOD = 100;
constexpr int64_t PERIOD_NS = 5 * NS_PER_SECOND;

constexpr char OUTPUT_VARIABLE[] = "OSTRA_HOST_EVENT_OUTPUT";
constexpr int NO_OUTPUT = -1;

int64_t ClockNs(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return int64_t{now.tv_sec} * NS_PER_SECOND + now.tv_nsec;
}

bool IsLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool IsNameCharacter(char character)
{
    return IsLetter(character) || (character >= '0' && character <= '9') || character == '_';
}

bool IsName(std::string_view name, size_t longest)
{
    return !name.empty() && name.size() <= longest && IsLetter(name.front()) &&
           std::all_of(name.begin(), name.end(), IsNameCharacter);
}

size_t SizeOf(const HiSysEventScalar &scalar)
{
    return scalar.kind == HiSysEventScalar::Kind::TEXT ? scalar.text.size() : NUMBER_SIZE;
}

size_t SizeOf(const HiSysEventParam &param)
{
    size_t size = param.key.size();
    if (!param.isVector) {
        return size + SizeOf(param.scalar);
    }
    for (const HiSysEventScalar &element : param.elements) {
        size += SizeOf(element);
    }
    return size;
}

// Counts the events of every call site. The sites are found by their hash, so that a lookup copies no text.
class WriteLimiter {
public:
    static WriteLimiter &GetInstance()
    {
        static auto &instance = *new WriteLimiter;  // never destroyed: threads may write until the very end
        return instance;
    }

    bool Admit(std::string_view eventName, std::string_view func, int64_t line)
    {
        const std::hash<std::string_view> hashText;
        const size_t hash = hashText(eventName) ^ (hashText(func) << 1) ^ (std::hash<int64_t>()(line) << 2);
        const int64_t now = ClockNs(CLOCK_MONOTONIC);

        const std::lock_guard<std::mutex> lock(mutex_);
        CallSite &site = Find(hash, eventName, func, line);
        if (site.count == 0 || now - site.periodBegin >= PERIOD_NS) {
            site.periodBegin = now;
            site.count = 0;
        }
        if (site.count == MAX_EVENTS_PER_PERIOD) {
            return false;
        }
        ++site.count;
        return true;
    }

private:
    struct CallSite {
        std::string eventName;
        std::string func;
        int64_t line;
        int64_t periodBegin;
        uint32_t count;
    };

    CallSite &Find(size_t hash, std::string_view eventName, std::string_view func, int64_t line)
    {
        const auto [begin, end] = sites_.equal_range(hash);
        for (auto it = begin; it != end; ++it) {
            CallSite &site = it->second;
            if (site.line == line && site.eventName == eventName && site.func == func) {
                return site;
            }
        }
        return sites_.emplace(hash, CallSite{std::string(eventName), std::string(func), line, 0, 0})->second;
    }

    std::mutex mutex_;
    std::unordered_multimap<size_t, CallSite> sites_;
};

// Where the events of this process are appended, if anywhere.
class EventOutput {
public:
    static const EventOutput &GetInstance()
    {
        static const EventOutput instance(std::getenv(OUTPUT_VARIABLE));
        return instance;
    }

    bool IsConfigured() const
    {
        return isConfigured_;
    }

    // One line, one write at the end of the file: lines of several threads and processes do not mix.
    bool Append(const std::string &line) const
    {
        const ssize_t written = write(descriptor_, line.data(), line.size());
        return written >= 0 && static_cast<size_t>(written) == line.size();
    }

private:
    explicit EventOutput(const char *target) : isConfigured_(target != nullptr && *target != '\0')
    {
        if (!isConfigured_) {
            return;
        }
        if (std::string_view(target) == "stderr") {
            descriptor_ = STDERR_FILENO;
            return;
        }
        constexpr mode_t mode = 0644;
        descriptor_ = open(target, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, mode);
        if (descriptor_ == NO_OUTPUT) {
            std::fprintf(stderr, "%s=%s cannot be opened: %s\n", OUTPUT_VARIABLE, target, std::strerror(errno));
        }
    }

    bool isConfigured_;
    int descriptor_ = NO_OUTPUT;
};

JsonTree NewText(const std::string &text)
{
    return JsonTree(cJSON_CreateString(text.c_str()));
}

template <typename Integer>
JsonTree NewInteger(Integer value)
{
    return JsonTree(cJSON_CreateRaw(std::to_string(value).c_str()));
}

JsonTree NewScalar(const HiSysEventScalar &scalar)
{
    switch (scalar.kind) {
        case HiSysEventScalar::Kind::BOOL:
            return JsonTree(cJSON_CreateBool(scalar.bits != 0 ? 1 : 0));
        case HiSysEventScalar::Kind::SIGNED:
            return NewInteger(static_cast<int64_t>(scalar.bits));
        case HiSysEventScalar::Kind::UNSIGNED:
            return NewInteger(scalar.bits);
        case HiSysEventScalar::Kind::FLOATING:
            return JsonTree(cJSON_CreateNumber(scalar.floating));
        case HiSysEventScalar::Kind::TEXT:
            break;
    }
    return NewText(std::string(scalar.text));
}

JsonTree NewValue(const HiSysEventParam &param)
{
    if (!param.isVector) {
        return NewScalar(param.scalar);
    }
    JsonTree array(cJSON_CreateArray());
    for (const HiSysEventScalar &element : param.elements) {
        JsonTree item = NewScalar(element);
        if (cJSON_AddItemToArray(array.get(), item.get()) == 0) {
            return nullptr;
        }
        static_cast<void>(item.release());  // the array owns it
    }
    return array;
}

bool AddField(const JsonTree &fields, const std::string &key, JsonTree value)
{
    if (cJSON_AddItemToObject(fields.get(), key.c_str(), value.get()) == 0) {
        return false;
    }
    static_cast<void>(value.release());  // the object owns it
    return true;
}

std::string TimeZone(int64_t epochMs)
{
    const auto seconds = static_cast<time_t>(epochMs / (NS_PER_SECOND / NS_PER_MS));
    tm local{};
    localtime_r(&seconds, &local);
    char text[8] = {0};
    static_cast<void>(std::strftime(text, sizeof(text), "%z", &local));
    return text;
}

bool AddPlatformFields(const JsonTree &fields, const std::string &domain, const std::string &eventName,
                       HiSysEvent::EventType type)
{
    const int64_t now = ClockNs(CLOCK_REALTIME) / NS_PER_MS;
    return AddField(fields, DOMAIN_FIELD, NewText(domain)) && AddField(fields, NAME_FIELD, NewText(eventName)) &&
           AddField(fields, TYPE_FIELD, NewInteger(static_cast<int>(type))) &&
           AddField(fields, "time_", NewInteger(now)) && AddField(fields, "tz_", NewText(TimeZone(now))) &&
           AddField(fields, "pid_", NewInteger(getpid())) &&
           AddField(fields, "tid_", NewInteger(syscall(SYS_gettid))) && AddField(fields, "uid_", NewInteger(getuid()));
}

// Builds the event; returns null when memory runs out.
std::shared_ptr<const HiSysEventRecord::Content> Build(const std::string &domain, const std::string &eventName,
                                                       HiSysEvent::EventType type, const HiSysEventParam *begin,
                                                       const HiSysEventParam *end)
{
    JsonTree fields(cJSON_CreateObject());
    if (!AddPlatformFields(fields, domain, eventName, type) || !std::all_of(begin, end, [&](const auto &param) {
            return AddField(fields, std::string(param.key), NewValue(param));
        })) {
        return nullptr;
    }
    const std::unique_ptr<char, decltype(&cJSON_free)> text(cJSON_PrintUnformatted(fields.get()), &cJSON_free);
    if (text == nullptr) {
        return nullptr;
    }
    auto content = std::make_shared<HiSysEventRecord::Content>();
    content->fields = std::move(fields);
    content->json = text.get();
    return content;
}

}  // namespace

int HiSysEvent::Send(const char *func, int64_t line, const std::string &domain, const std::string &eventName,
                     EventType type, const HiSysEventParam *params, size_t paramCount)
{
    const HiSysEventParam *end = params + paramCount;
    if (!IsName(domain, LONGEST_DOMAIN_NAME)) {
        return BAD_DOMAIN_NAME;
    }
    if (!IsName(eventName, LONGEST_EVENT_NAME)) {
        return BAD_EVENT_NAME;
    }
    if (!std::all_of(params, end, [](const HiSysEventParam &param) { return IsName(param.key, LONGEST_KEY); })) {
        return BAD_KEY;
    }
    if (!WriteLimiter::GetInstance().Admit(eventName, HiSysEventScalar::Text(func), line)) {
        return TOO_OFTEN;
    }
    size_t size = 0;
    for (const HiSysEventParam *param = params; param != end; ++param) {
        size += SizeOf(*param);
    }
    if (size > LARGEST_EVENT) {
        return OVER_SIZE;
    }

    const EventOutput &output = EventOutput::GetInstance();
    const std::vector<std::shared_ptr<HiSysEventListener>> listeners = FindListeners(domain, eventName);
    if (listeners.empty() && !output.IsConfigured()) {
        return 0;
    }
    const std::shared_ptr<const HiSysEventRecord::Content> content = Build(domain, eventName, type, params, end);
    if (content == nullptr || (output.IsConfigured() && !output.Append(content->json + "\n"))) {
        return SEND_FAILED;
    }
    const auto record = std::make_shared<HiSysEventRecord>(content);
    for (const std::shared_ptr<HiSysEventListener> &listener : listeners) {
        listener->OnEvent(record);
    }
    return 0;
}

}  // namespace OHOS::HiviewDFX
