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

constexpr int BAD_ARGUMENT = -9;
constexpr int FAILED = -1;
constexpr size_t MAX_NAME_LENGTH = 96;
constexpr size_t MAX_VALUE_LENGTH = 96;
constexpr char LIST_VARIABLE[] = "OSTRA_HOST_PARAMETERS";
constexpr char FILE_VARIABLE[] = "OSTRA_HOST_PARAMETER_FILE";
constexpr char LIST_SEPARATOR = ';';
constexpr char COMMENT_MARK = '#';

bool IsNameCharacter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_' || character == '.';
}

bool IsName(std::string_view name)
{
    return !name.empty() && name.size() <= MAX_NAME_LENGTH && std::all_of(name.begin(), name.end(), IsNameCharacter);
}

std::string_view Trim(std::string_view text)
{
    constexpr char blanks[] = " \t\r";
    const size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

// Reads the file that OSTRA_HOST_PARAMETER_FILE names. On error, reports it and returns what was read so far.
std::string ReadFile(const char *path)
{
    const int descriptor = OpenEnvironmentFile(FILE_VARIABLE, path, O_RDONLY);
    if (descriptor < 0) {
        return "";
    }
    std::string text;
    std::array<char, 4096> piece{};
    ssize_t count = 0;
    while ((count = read(descriptor, piece.data(), piece.size())) > 0) {
        text.append(piece.data(), static_cast<size_t>(count));
    }
    if (count < 0) {
        std::fprintf(stderr, "%s=%s cannot be read: %s\n", FILE_VARIABLE, path, std::strerror(errno));
    }
    close(descriptor);
    return text;
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
        if (!IsName(name) || value.size() > MAX_VALUE_LENGTH) {
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
            Fill(ReadFile(path), '\n', FILE_VARIABLE);
        }
        if (const char *list = std::getenv(LIST_VARIABLE)) {
            Fill(list, LIST_SEPARATOR, LIST_VARIABLE);
        }
    }

    void Fill(const std::string &text, char separator, const char *source)
    {
        std::istringstream entries(text);
        std::string line;
        while (std::getline(entries, line, separator)) {
            const std::string_view entry = Trim(line);
            if (entry.empty() || entry.front() == COMMENT_MARK) {
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
        return BAD_ARGUMENT;
    }
    if (!IsName(key)) {
        return FAILED;
    }
    const std::optional<std::string> stored = ParameterStore::GetInstance().Get(key);
    if (!stored.has_value() && def == nullptr) {
        return FAILED;
    }
    const std::string_view text = stored.has_value() ? std::string_view(*stored) : std::string_view(def);
    if (text.size() >= len) {
        return BAD_ARGUMENT;
    }
    std::memcpy(value, text.data(), text.size());
    value[text.size()] = '\0';
    return static_cast<int>(text.size());
}

int SetParameter(const char *key, const char *value)
{
    if (key == nullptr || value == nullptr) {
        return BAD_ARGUMENT;
    }
    return ParameterStore::GetInstance().Set(key, value) ? 0 : BAD_ARGUMENT;
}
