// SPDX-License-Identifier: Apache-2.0

#include <cJSON.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <utility>

#include "input.h"
#include "ostra_radar.h"
#include "subjects.h"

using OHOS::DistributedHardware::OstraAdapter::ADAPTER_BEHAVIOR_EVENT;
using OHOS::DistributedHardware::OstraAdapter::OSTRA_DOMAIN;

namespace {

// The operation of OstraRadar that reports each stage, from stage 1 on.
constexpr std::array<const char *, 11> STAGES = {
    "ServiceStartRes",      "ConnectDeviceRes", "UpdateRes",           "UpdatePortRes",  "EnableVirtualRes",
    "AudioOpenRes",         "AudioCloseRes",    "DisconnectDeviceRes", "ServiceStopRes", "LoadSinkServiceRes",
    "UnLoadSinkServiceRes",
};
constexpr int SUCCESS = 1;
constexpr int NANOSECONDS_PER_MS = 1000000;
constexpr int MS_PER_SECOND = 1000;

// The event of one line; its members are read by name.
class Event {
public:
    explicit Event(const std::string &line) : fields_(cJSON_Parse(line.c_str()), &cJSON_Delete)
    {
    }

    bool IsOfLibrary() const
    {
        return Text("domain_") == OSTRA_DOMAIN && Text("name_") == ADAPTER_BEHAVIOR_EVENT && Has("BIZ_STAGE") &&
               Has("STAGE_RES");
    }

    bool Has(const char *key) const
    {
        return cJSON_GetObjectItemCaseSensitive(fields_.get(), key) != nullptr;
    }

    std::string Text(const char *key) const
    {
        const char *const text = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(fields_.get(), key));
        return text == nullptr ? "" : text;
    }

    int64_t Number(const char *key) const
    {
        const cJSON *const item = cJSON_GetObjectItemCaseSensitive(fields_.get(), key);
        constexpr double mostExact = 9007199254740992.0;  // 2^53
        const bool isInteger = cJSON_IsNumber(item) != 0 && std::fabs(item->valuedouble) <= mostExact;
        return isInteger ? static_cast<int64_t>(item->valuedouble) : 0;
    }

private:
    std::unique_ptr<cJSON, decltype(&cJSON_Delete)> fields_;
};

std::string StageName(int64_t stage)
{
    const bool isKnown = stage >= 1 && stage <= static_cast<int64_t>(STAGES.size());
    return isKnown ? STAGES[static_cast<size_t>(stage) - 1] : "stage " + std::to_string(stage);
}

// Local time with milliseconds.
std::string TimeText(int64_t epochMs)
{
    const auto seconds = static_cast<time_t>(epochMs / MS_PER_SECOND);
    tm local{};
    localtime_r(&seconds, &local);
    char day[32];
    char text[40];
    std::strftime(day, sizeof(day), "%Y-%m-%d %H:%M:%S", &local);
    std::snprintf(text, sizeof(text), "%s.%03d", day, static_cast<int>(epochMs % MS_PER_SECOND));
    return text;
}

Report EventReport(const Event &event)
{
    Report report;
    report.Add("time", event.Has("time_") ? Report::Value(event.Number("time_")) : Report::Value());
    report.Add("pid", event.Has("pid_") ? Report::Value(event.Number("pid_")) : Report::Value());
    report.Add("host", event.Text("HOST_PKG"));
    report.Add("scenario", event.Number("BIZ_SCENE"));
    report.Add("stage", event.Number("BIZ_STAGE"));
    report.Add("operation", StageName(event.Number("BIZ_STAGE")));
    report.Add("function", event.Text("FUNC"));
    if (event.Has("TO_CALL_PKG")) {
        report.Add("called", event.Text("TO_CALL_PKG"));
    }
    report.Add("success", event.Number("STAGE_RES") == SUCCESS);
    report.Add("error_code", event.Number("ERROR_CODE"));
    return report;
}

std::string EventLine(const Event &event)
{
    const auto orDash = [](const std::string &text) {
        return text.empty() ? std::string("-") : Printable(text);
    };
    const bool isFailure = event.Number("STAGE_RES") != SUCCESS;
    const std::string time = event.Has("time_") ? TimeText(event.Number("time_")) : "-";
    char columns[128];
    std::snprintf(columns, sizeof(columns), "  scenario %-2lld  %-20s  ",
                  static_cast<long long>(event.Number("BIZ_SCENE")), StageName(event.Number("BIZ_STAGE")).c_str());
    std::string host = orDash(event.Text("HOST_PKG"));
    constexpr size_t hostWidth = 22;
    host.resize(std::max(host.size(), hostWidth), ' ');
    std::string line = time + "  " + host + columns;
    line += isFailure ? "FAILED, error " + std::to_string(event.Number("ERROR_CODE")) : "ok";
    line += "  (" + orDash(event.Text("FUNC"));
    line += event.Has("TO_CALL_PKG") ? " calls " + orDash(event.Text("TO_CALL_PKG")) + ")" : ")";
    return line;
}

class EventPrinter {
public:
    explicit EventPrinter(bool isJson) : isJson_(isJson)
    {
        const char *const noColor = std::getenv("NO_COLOR");
        isColored_ = isatty(STDOUT_FILENO) != 0 && (noColor == nullptr || *noColor == '\0');
    }

    void Print(const std::string &text)
    {
        ++lines_;
        const Event event(text);
        if (!event.IsOfLibrary()) {
            firstForeign_ = foreign_++ == 0 ? lines_ : firstForeign_;
            return;
        }
        const bool isMarked = isColored_ && !isJson_ && event.Number("STAGE_RES") != SUCCESS;
        const std::string line = isJson_ ? ToJson(EventReport(event), false) : EventLine(event);
        std::printf("%s%s%s\n", isMarked ? "\033[1;31m" : "", line.c_str(), isMarked ? "\033[0m" : "");
        std::fflush(stdout);
    }

    // Raises InputError when there were lines of another kind.
    void Finish() const
    {
        if (foreign_ > 0) {
            throw InputError(std::to_string(foreign_) + " of " + std::to_string(lines_) +
                             " lines are no events of the library, the first is line " + std::to_string(firstForeign_));
        }
    }

private:
    bool isJson_;
    bool isColored_ = false;
    size_t lines_ = 0;
    size_t foreign_ = 0;
    size_t firstForeign_ = 0;
};

// A file that is read line by line as it grows.
class LineReader {
public:
    LineReader(const std::string &path, bool isFollowed) : name_(path == "-" ? "standard input" : path)
    {
        descriptor_ = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat status {};
        if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) {
            throw InputError(name_ + ": " + std::strerror(errno));
        }
        isFollowed_ = isFollowed && S_ISREG(status.st_mode);  // anything else tells itself when it has ended
    }
    ~LineReader()
    {
        if (descriptor_ > STDIN_FILENO) {
            close(descriptor_);
        }
    }
    LineReader(const LineReader &) = delete;
    LineReader &operator=(const LineReader &) = delete;

    // Gives the next line without its end; false at the end of what is not followed.
    bool Next(std::string &line)
    {
        size_t end = pending_.find('\n');
        for (; end == std::string::npos; end = pending_.find('\n')) {
            if (!ReadMore()) {
                line = std::exchange(pending_, {});
                return !line.empty();
            }
        }
        line = pending_.substr(0, end);
        pending_.erase(0, end + 1);
        return true;
    }

private:
    bool ReadMore()
    {
        char piece[4096];
        for (;;) {
            const ssize_t count = read(descriptor_, piece, sizeof(piece));
            if (count > 0) {
                pending_.append(piece, static_cast<size_t>(count));
                return true;
            }
            if (count < 0 && errno != EINTR) {
                throw InputError(name_ + ": " + std::strerror(errno));
            }
            if (count == 0 && !isFollowed_) {
                return false;
            }
            StartOverIfCut();
            constexpr timespec pause = {0, 100 * NANOSECONDS_PER_MS};
            nanosleep(&pause, nullptr);
        }
    }

    // A file that became shorter is a new one.
    void StartOverIfCut()
    {
        struct stat status {};
        if (isFollowed_ && fstat(descriptor_, &status) == 0 && status.st_size < lseek(descriptor_, 0, SEEK_CUR)) {
            lseek(descriptor_, 0, SEEK_SET);
            pending_.clear();
        }
    }

    std::string name_;
    std::string pending_;
    int descriptor_ = -1;
    bool isFollowed_ = false;
};

}  // namespace

void PrintEvents(const EventOptions &options)
{
    LineReader lines(options.path, options.isFollowed);
    EventPrinter printer(options.isJson);
    for (std::string line; lines.Next(line);) {
        if (!line.empty()) {
            printer.Print(line);
        }
    }
    printer.Finish();
}
