// SPDX-License-Identifier: Apache-2.0

#include "parameter.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "io/environment_file.h"
#include "parameter/parameter_changes.h"

namespace ostra::host {
namespace {

std::atomic<uint64_t> g_changes{0};

constexpr int INVALID_ARGUMENT = -9;
constexpr int FAILED = -1;
constexpr size_t MAX_NAME_LENGTH = 96;
constexpr size_t MAX_VALUE_LENGTH = 96;
constexpr char LIST_VARIABLE[] = "OSTRA_HOST_PARAMETERS";
constexpr char FILE_VARIABLE[] = "OSTRA_HOST_PARAMETER_FILE";
constexpr char LIST_SEPARATOR = ';';
constexpr char COMMENT_PREFIX = '#';

bool IsValidInName(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_' || character == '.';
}

bool IsValidName(std::string_view name)
{
    return !name.empty() && name.size() <= MAX_NAME_LENGTH && std::all_of(name.begin(), name.end(), IsValidInName);
}

std::string_view Trim(std::string_view line)
{
    constexpr char whitespace[] = " \t\r";
    const size_t begin = line.find_first_not_of(whitespace);
    if (begin == std::string_view::npos) {
        return {};
    }
    return line.substr(begin, line.find_last_not_of(whitespace) + 1 - begin);
}

// Reads the file that OSTRA_HOST_PARAMETER_FILE names. On error, reports it and returns what was read so far.
std::string ReadFile(const char *path)
{
    const int descriptor = OpenEnvironmentFile(FILE_VARIABLE, path, O_RDONLY);
    if (descriptor < 0) {
        return "";
    }
    std::string content;
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while ((count = read(descriptor, buffer.data(), buffer.size())) > 0) {
        content.append(buffer.data(), static_cast<size_t>(count));
    }
    if (count < 0) {
        std::fprintf(stderr, "%s=%s cannot be read: %s\n", FILE_VARIABLE, path, std::strerror(errno));
    }
    close(descriptor);
    return content;
}

class ParameterStore {
public:
    static ParameterStore &GetInstance()
    {
        static auto &instance = *new ParameterStore;  // never destroyed: threads may read during exit
        return instance;
    }

    std::optional<std::string> Get(std::string_view name)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = values_.find(name);
        return found == values_.end() ? std::nullopt : std::make_optional(found->second);
    }

    bool Set(std::string_view name, std::string_view value)
    {
        if (!IsValidName(name) || value.size() > MAX_VALUE_LENGTH) {
            return false;
        }
        const std::lock_guard<std::mutex> lock(mutex_);
        values_.insert_or_assign(std::string(name), value);
        ++g_changes;
        return true;
    }

private:
    ParameterStore()
    {
        if (const char *path = std::getenv(FILE_VARIABLE)) {
            SetEntries(ReadFile(path), '\n', FILE_VARIABLE);
        }
        if (const char *list = std::getenv(LIST_VARIABLE)) {
            SetEntries(list, LIST_SEPARATOR, LIST_VARIABLE);
        }
    }

    void SetEntries(const std::string &content, char separator, const char *source)
    {
        std::istringstream entries(content);
        std::string line;
        while (std::getline(entries, line, separator)) {
            const std::string_view entry = Trim(line);
            if (entry.empty() || entry.front() == COMMENT_PREFIX) {
                continue;
            }
            const size_t equals = entry.find('=');
            if (equals == std::string_view::npos || !Set(entry.substr(0, equals), entry.substr(equals + 1))) {
                std::fprintf(stderr, "%s: skipping malformed entry \"%s\"\n", source, line.c_str());
            }
        }
    }

    std::mutex mutex_;
    std::map<std::string, std::string, std::less<>> values_;
};

}  // namespace

uint64_t CountParameterChanges()
{
    return g_changes.load();
}

}  // namespace ostra::host

using namespace ostra::host;

int GetParameter(const char *key, const char *def, char *value, uint32_t len)
{
    if (key == nullptr || value == nullptr) {
        return INVALID_ARGUMENT;
    }
    if (!IsValidName(key)) {
        return FAILED;
    }
    const std::optional<std::string> stored = ParameterStore::GetInstance().Get(key);
    if (!stored.has_value() && def == nullptr) {
        return FAILED;
    }
    const std::string_view result = stored.has_value() ? std::string_view(*stored) : std::string_view(def);
    if (result.size() >= len) {
        return INVALID_ARGUMENT;
    }
    std::memcpy(value, result.data(), result.size());
    value[result.size()] = '\0';
    return static_cast<int>(result.size());
}

int SetParameter(const char *key, const char *value)
{
    if (key == nullptr || value == nullptr) {
        return INVALID_ARGUMENT;
    }
    return ParameterStore::GetInstance().Set(key, value) ? 0 : INVALID_ARGUMENT;
}
