// SPDX-License-Identifier: Apache-2.0

#include "hisysevent/event_encoder.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>

using namespace OHOS::HiviewDFX;

namespace ostra::host {
namespace {

// Sizes of the parts of an encoded event. The recordings determine the platform's limit to within 8 bytes; with these
// sizes, the host's limit is in that range.
constexpr size_t HEADER_SIZE = 88;
constexpr size_t KEY_OVERHEAD = 1;
constexpr size_t VALUE_OVERHEAD = 1;
constexpr size_t STRING_OVERHEAD = 3;
constexpr size_t NUMBER_SIZE = 8;

constexpr int64_t MS_PER_SECOND = 1000;
constexpr int64_t NS_PER_MS = 1000000;

bool IsLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool IsNameCharacter(char character)
{
    return IsLetter(character) || IsDigit(character) || character == '_';
}

void AbortIfNull(std::string_view string, const char *what)
{
    if (string.data() == nullptr) {
        std::fprintf(stderr, "HiSysEvent::Write: null %s\n", what);
        std::abort();
    }
}

bool IsControl(char character)
{
    constexpr char deleteCharacter = 0x7F;
    return static_cast<unsigned char>(character) < ' ' || character == deleteCharacter;
}

// Formats a float with nine significant digits, and a double with the fewest that survive a round trip; numbers of up
// to 15 digits before the point have no exponent. Independent of the locale.
std::string FormatNumber(const EventScalar &scalar)
{
    if (!std::isfinite(scalar.floating)) {
        return "0";
    }
    char buffer[32];
    char *const end = buffer + sizeof(buffer);
    int digits = std::numeric_limits<float>::max_digits10;
    if (scalar.kind == EventScalar::Kind::DOUBLE) {
        const char *shortest = std::to_chars(buffer, end, scalar.floating, std::chars_format::scientific).ptr;
        const char *exponent = std::find(static_cast<const char *>(buffer), shortest, 'e');
        const auto significant = std::count_if(static_cast<const char *>(buffer), exponent, IsDigit);
        digits = std::max(static_cast<int>(significant), std::numeric_limits<double>::digits10);
    }
    return {buffer, std::to_chars(buffer, end, scalar.floating, std::chars_format::general, digits).ptr};
}

std::string TimeZone(time_t seconds)
{
    tm local{};
    localtime_r(&seconds, &local);
    char buffer[8] = "";
    static_cast<void>(std::strftime(buffer, sizeof(buffer), "%z", &local));
    return buffer;
}

}  // namespace

bool IsEventName(std::string_view name, size_t maxLength)
{
    return !name.empty() && name.size() <= maxLength && IsLetter(name.front()) &&
           std::all_of(name.begin(), name.end(), IsNameCharacter);
}

EventEncoder::EventEncoder(const std::string &domain, const std::string &eventName, int type) : size_(HEADER_SIZE)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    json_ = R"({"domain_":")" + domain + R"(","name_":")" + eventName + R"(","type_":)" + std::to_string(type) +
            R"(,"time_":)" + std::to_string(now.tv_sec * MS_PER_SECOND + now.tv_nsec / NS_PER_MS) + R"(,"tz_":")" +
            TimeZone(now.tv_sec) + R"(","pid_":)" + std::to_string(getpid()) + R"(,"tid_":)" +
            std::to_string(syscall(SYS_gettid)) + R"(,"uid_":)" + std::to_string(getuid());
}

void EventEncoder::Add(const EventKeyValue &param)
{
    AbortIfNull(param.key, "key");
    if (keyCount_ == MAX_PARAM_NUMBER) {
        warning_ = ERR_KEY_NUMBER_TOO_MUCH;
        return;
    }
    if (!IsEventName(param.key, MAX_PARAM_NAME_LENGTH)) {
        warning_ = ERR_KEY_NAME_INVALID;
        return;
    }
    ++keyCount_;
    size_ += KEY_OVERHEAD + param.key.size() + VALUE_OVERHEAD;
    json_.append(",\"").append(param.key).append("\":");
    if (!param.isVector) {
        AddScalar(param.elements.front());
        return;
    }
    if (param.elements.size() > MAX_ARRAY_SIZE) {
        warning_ = ERR_ARRAY_TOO_MUCH;
    }
    json_ += '[';
    for (size_t i = 0; i < std::min(param.elements.size(), MAX_ARRAY_SIZE); ++i) {
        json_ += i == 0 ? "" : ",";
        AddScalar(param.elements[i]);
    }
    json_ += ']';
}

void EventEncoder::AddScalar(const EventScalar &scalar)
{
    switch (scalar.kind) {
        case EventScalar::Kind::SIGNED:
            json_ += std::to_string(static_cast<int64_t>(scalar.bits));
            break;
        case EventScalar::Kind::UNSIGNED:
            json_ += std::to_string(scalar.bits);
            break;
        case EventScalar::Kind::FLOAT:
        case EventScalar::Kind::DOUBLE:
            json_ += FormatNumber(scalar);
            break;
        case EventScalar::Kind::STRING:
            AddString(scalar.string);
            return;
    }
    size_ += NUMBER_SIZE;
}

// The platform sends strings escaped, so escapes count towards the size.
void EventEncoder::AddString(std::string_view string)
{
    AbortIfNull(string, "string");
    if (string.size() > MAX_STRING_LENGTH) {
        warning_ = ERR_VALUE_LENGTH_TOO_LONG;
    }
    constexpr std::string_view escaped = "\"\\\b\f\n\r\t";
    constexpr std::string_view escapes = "\"\\bfnrt";
    json_ += '"';
    const size_t begin = json_.size();
    for (const char character : string) {
        if (const size_t at = escaped.find(character); at != std::string_view::npos) {
            json_.append(1, '\\').append(1, escapes[at]);
        } else if (!IsControl(character)) {
            json_ += character;
        }
    }
    size_ += STRING_OVERHEAD + (json_.size() - begin);
    json_ += '"';
}

}  // namespace ostra::host
