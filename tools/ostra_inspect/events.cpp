// SPDX-License-Identifier: Apache-2.0

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "inspect.h"
#include "ostra_radar.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

// The operation of OstraRadar that reports each stage, starting with stage 1.
constexpr std::array<const char *, 11> STAGES = {
    "ServiceStartRes",      "ConnectDeviceRes", "UpdateRes",           "UpdatePortRes",  "EnableVirtualRes",
    "AudioOpenRes",         "AudioCloseRes",    "DisconnectDeviceRes", "ServiceStopRes", "LoadSinkServiceRes",
    "UnLoadSinkServiceRes",
};
constexpr int SUCCESS = 1;  // value of STAGE_RES
constexpr std::array<size_t, 7> WIDTHS = {23, 7, 22, 8, 20, 16, 0};

const cJSON *Member(const cJSON *object, const char *key)
{
    return cJSON_GetObjectItemCaseSensitive(object, key);
}

bool IsFailure(const cJSON *event)
{
    return cJSON_IsTrue(Member(event, "success")) == 0;
}

std::string StageName(int stage)
{
    const bool isKnown = stage >= 1 && stage <= static_cast<int>(STAGES.size());
    return isKnown ? STAGES[static_cast<size_t>(stage) - 1] : "unknown";
}

// Returns the local time with milliseconds.
std::string FormatTime(const cJSON *epochMs)
{
    constexpr double maxTime = 253402300799999;  // the end of the year 9999
    constexpr int64_t msPerSecond = 1000;
    if (cJSON_IsNumber(epochMs) == 0 || epochMs->valuedouble < 0 || epochMs->valuedouble > maxTime) {
        return FormatValue(epochMs);
    }
    const auto ms = static_cast<int64_t>(epochMs->valuedouble);
    const auto seconds = static_cast<time_t>(ms / msPerSecond);
    tm local{};
    localtime_r(&seconds, &local);
    char day[32];
    std::strftime(day, sizeof(day), "%Y-%m-%d %H:%M:%S", &local);
    return std::string(day) + "." + std::to_string(msPerSecond + ms % msPerSecond).substr(1);
}

std::string FormatResult(const cJSON *event)
{
    const cJSON *const name = Member(event, "error_name");
    return IsFailure(event) ? "FAILED, error " + FormatValue(Member(event, "error_code")) +
                                  (name == nullptr ? "" : " " + FormatValue(name))
                            : "ok";
}

std::string FormatRow(const std::array<std::string, WIDTHS.size()> &cells)
{
    std::string row;
    for (size_t i = 0; i < cells.size(); ++i) {
        row += (i == 0 ? "" : "  ") + PadRight(cells[i], WIDTHS[i]);
    }
    return row;
}

bool MatchesFilters(const cJSON *event, const EventOptions &options)
{
    const cJSON *const pid = Member(event, "pid");
    const bool matchesPid = !options.pid || (cJSON_IsNumber(pid) != 0 && pid->valueint == *options.pid);
    return (IsFailure(event) || !options.isFailedOnly) && matchesPid;
}

void Print(const cJSON *event, const EventOptions &options, bool isFirst)
{
    const char *const noColor = std::getenv("NO_COLOR");
    const bool isColored = IsFailure(event) && isatty(STDOUT_FILENO) != 0 && (noColor == nullptr || *noColor == '\0');
    if (options.isJson) {
        std::printf("%s\n", ToJson(event, false).c_str());
    } else {
        const std::string heading =
            FormatRow({"time", "pid", "host", "business", "operation", "result", "function"}) + "\n";
        std::printf("%s%s%s%s\n", isFirst ? heading.c_str() : "", isColored ? "\033[1;31m" : "",
                    FormatEvent(event).c_str(), isColored ? "\033[0m" : "");
    }
    std::fflush(stdout);  // so that a pipe receives the event immediately
}

// Reads a line without its newline; of a line that is too long for an event, only the beginning. Returns false at the
// end of the file or if reading fails.
bool ReadLine(FILE *file, std::string &line)
{
    line.clear();
    int byte = std::getc(file);
    for (; byte != EOF && byte != '\n'; byte = std::getc(file)) {
        if (line.size() <= MAX_DOCUMENT_BYTES) {
            line += static_cast<char>(byte);
        }
    }
    return byte != EOF || !line.empty();
}

}  // namespace

JsonTree ParseEvent(const std::string &line)
{
    const JsonTree fields(line.size() > MAX_DOCUMENT_BYTES ? nullptr : cJSON_Parse(line.c_str()));
    const auto field = [&fields](const char *key) {
        return Member(fields.get(), key);
    };
    if (FormatValue(field("domain_")) != OSTRA_DOMAIN || FormatValue(field("name_")) != ADAPTER_BEHAVIOR_EVENT ||
        cJSON_IsNumber(field("BIZ_STAGE")) == 0 || cJSON_IsNumber(field("STAGE_RES")) == 0) {
        return nullptr;
    }
    JsonTree event(cJSON_CreateObject());
    AddCopy(event.get(), "time", field("time_"));
    AddCopy(event.get(), "pid", field("pid_"));
    AddCopy(event.get(), "host", field("HOST_PKG"));
    AddCopy(event.get(), "business", field("BIZ_SCENE"));
    AddCopy(event.get(), "stage", field("BIZ_STAGE"));
    AddString(event.get(), "operation", StageName(field("BIZ_STAGE")->valueint));
    AddCopy(event.get(), "function", field("FUNC"));
    if (field("TO_CALL_PKG") != nullptr) {
        AddCopy(event.get(), "called", field("TO_CALL_PKG"));
    }
    const bool isSuccess = field("STAGE_RES")->valueint == SUCCESS;
    const cJSON *const code = field("ERROR_CODE");
    cJSON_AddBoolToObject(event.get(), "success", isSuccess ? 1 : 0);
    AddNumber(event.get(), "error_code", cJSON_IsNumber(code) != 0 ? code->valueint : 0);
    if (!isSuccess && cJSON_IsNumber(code) != 0 && !ResultName(code->valueint).empty()) {
        AddString(event.get(), "error_name", ResultName(code->valueint));
    }
    if (!NulWarning(line).empty()) {
        AddString(event.get(), "warning", NulWarning(line));
    }
    return event;
}

std::string FormatEvent(const cJSON *event)
{
    const cJSON *const called = Member(event, "called");
    const cJSON *const warning = Member(event, "warning");
    return FormatRow(
        {FormatTime(Member(event, "time")), FormatValue(Member(event, "pid")), FormatValue(Member(event, "host")),
         FormatValue(Member(event, "business")), FormatValue(Member(event, "operation")), FormatResult(event),
         FormatValue(Member(event, "function")) + (called == nullptr ? "" : " calls " + FormatValue(called)) +
             (warning == nullptr ? "" : "; warning: " + FormatValue(warning))});
}

void PrintEvents(const std::string &path, const EventOptions &options)
{
    const InputFile file = OpenInput(path);
    size_t lines = 0;
    size_t invalid = 0;
    size_t firstInvalid = 0;
    size_t printed = 0;
    std::string line;
    while (ReadLine(file.get(), line)) {
        ++lines;
        const JsonTree event = ParseEvent(line);
        if (event != nullptr && MatchesFilters(event.get(), options)) {
            Print(event.get(), options, printed++ == 0);
        }
        if (event == nullptr && line.find_first_not_of('\r') != std::string::npos) {
            firstInvalid = invalid++ == 0 ? lines : firstInvalid;
        }
    }
    if (std::feof(file.get()) == 0) {
        throw InputError(path + ": " + std::strerror(errno));
    }
    if (invalid > 0) {
        throw InputError(std::to_string(invalid) + " of " + std::to_string(lines) +
                         " lines not recognized as events, the first at line " + std::to_string(firstInvalid));
    }
}
