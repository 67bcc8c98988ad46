// SPDX-License-Identifier: Apache-2.0

#include "hisysevent_record.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "cJSON.h"

namespace OHOS::HiviewDFX {
namespace {

constexpr int SUCCEEDED = 0;
constexpr int NOT_AN_OBJECT = -1;
constexpr int KEY_NOT_FOUND = -2;
constexpr int WRONG_TYPE = -3;

// The fields that the platform adds to an event, with their getters.
#define PLATFORM_FIELDS(FIELD)                                   \
    FIELD("domain_", GetDomain, std::string, std::string)        \
    FIELD("name_", GetEventName, std::string, std::string)       \
    FIELD("type_", GetEventType, HiSysEvent::EventType, int64_t) \
    FIELD("time_", GetTime, uint64_t, uint64_t)                  \
    FIELD("tz_", GetTimeZone, std::string, std::string)          \
    FIELD("pid_", GetPid, int64_t, int64_t)                      \
    FIELD("tid_", GetTid, int64_t, int64_t)                      \
    FIELD("uid_", GetUid, int64_t, int64_t)                      \
    FIELD("level_", GetLevel, std::string, std::string)          \
    FIELD("tag_", GetTag, std::string, std::string)              \
    FIELD("traceid_", GetTraceId, uint64_t, uint64_t)            \
    FIELD("spanid_", GetSpanId, uint64_t, uint64_t)              \
    FIELD("pspanid_", GetPspanId, uint64_t, uint64_t)            \
    FIELD("trace_flag_", GetTraceFlag, int, int64_t)

enum class Kind { NUMBER, STRING, OTHER };

struct Scalar {
    Kind kind;
    std::string string;  // for a number, its characters in the JSON document
    double number;
};

struct Field {
    std::string key;
    bool isList;
    std::vector<Scalar> values;
};

// Reads the fields of an object. cJSON stores numbers as doubles, which have only 53 bits of precision, so the
// characters of each number are taken from the document, where the numbers occur in the same order.
class FieldReader {
public:
    explicit FieldReader(std::string_view json) : json_(json)
    {
    }

    std::vector<Field> Read(const cJSON *object)
    {
        std::vector<Field> fields;
        for (const cJSON *item = object->child; item != nullptr; item = item->next) {
            Field field{item->string, cJSON_IsArray(item) != 0, {}};
            for (const cJSON *value = field.isList ? item->child : item; value != nullptr;
                 value = field.isList ? value->next : nullptr) {
                field.values.push_back(ReadScalar(value));
            }
            fields.push_back(std::move(field));
        }
        return fields;
    }

private:
    Scalar ReadScalar(const cJSON *item)
    {
        if (cJSON_IsNumber(item) != 0) {
            return {Kind::NUMBER, NextNumber(), item->valuedouble};
        }
        if (cJSON_IsString(item) != 0) {
            return {Kind::STRING, item->valuestring, 0};
        }
        for (const cJSON *child = item->child; child != nullptr; child = child->next) {
            ReadScalar(child);  // skips the numbers of a nested value
        }
        return {Kind::OTHER, "", 0};
    }

    std::string NextNumber()
    {
        constexpr char numberCharacters[] = "+-.0123456789eE";
        at_ = json_.find_first_of("-0123456789\"", at_);
        while (json_[at_] == '"') {
            at_ = json_.find_first_of("-0123456789\"", EndOfString(at_));
        }
        const size_t begin = at_;
        at_ = std::min(json_.find_first_not_of(numberCharacters, at_), json_.size());
        return std::string(json_.substr(begin, at_ - begin));
    }

    // Returns the position after the closing quote.
    size_t EndOfString(size_t quote) const
    {
        size_t at = quote + 1;
        while (json_[at] != '"') {
            at += json_[at] == '\\' ? 2 : 1;
        }
        return at + 1;
    }

    std::string_view json_;
    size_t at_ = 0;
};

template <typename Integer>
bool Convert(const Scalar &scalar, Integer &value)
{
    const char *const end = scalar.string.data() + scalar.string.size();
    const auto [parsed, error] = std::from_chars(scalar.string.data(), end, value);
    return scalar.kind == Kind::NUMBER && error == std::errc() && parsed == end;
}

bool Convert(const Scalar &scalar, double &value)
{
    value = scalar.number;
    return scalar.kind == Kind::NUMBER;
}

bool Convert(const Scalar &scalar, std::string &value)
{
    value = scalar.string;
    return scalar.kind == Kind::STRING;
}

template <typename Value>
bool Convert(const Field &field, Value &value)
{
    return !field.isList && Convert(field.values.front(), value);
}

template <typename Value>
bool Convert(const Field &field, std::vector<Value> &values)
{
    return field.isList && std::all_of(field.values.begin(), field.values.end(), [&](const Scalar &scalar) {
               values.emplace_back();
               return Convert(scalar, values.back());
           });
}

}  // namespace

struct HiSysEventRecord::Content {
    template <typename Value>
    int Get(const std::string &param, Value &value) const
    {
        if (!isObject) {
            return NOT_AN_OBJECT;
        }
        const auto found =
            std::find_if(fields.begin(), fields.end(), [&](const Field &field) { return field.key == param; });
        if (found == fields.end()) {
            return KEY_NOT_FOUND;
        }
        Value converted{};
        if (!Convert(*found, converted)) {
            return WRONG_TYPE;
        }
        value = std::move(converted);
        return SUCCEEDED;
    }

    std::string json;
    bool isObject;
    std::vector<Field> fields;
};

HiSysEventRecord::HiSysEventRecord(const std::string &json)
{
    const std::unique_ptr<cJSON, decltype(&cJSON_Delete)> tree(
        cJSON_ParseWithLengthOpts(json.c_str(), json.size() + 1, nullptr, 1), &cJSON_Delete);
    const bool isObject = cJSON_IsObject(tree.get()) != 0;
    content_ = std::make_shared<Content>(
        Content{json, isObject, isObject ? FieldReader(json).Read(tree.get()) : std::vector<Field>()});
}

std::string HiSysEventRecord::AsJson() const
{
    return content_->json;
}

#define GETTER(field, Getter, Result, Stored) \
    Result HiSysEventRecord::Getter() const   \
    {                                         \
        Stored value{};                       \
        content_->Get(field, value);          \
        return static_cast<Result>(value);    \
    }
PLATFORM_FIELDS(GETTER)

// Only the first field with a platform name is the platform's: an event may use the same name for its own key.
void HiSysEventRecord::GetParamNames(std::vector<std::string> &params) const
{
    params.clear();
#define NAME(field, ...) field,
    std::vector<std::string_view> platformKeys = {PLATFORM_FIELDS(NAME)};
    for (const Field &field : content_->fields) {
        const auto found = std::find(platformKeys.begin(), platformKeys.end(), field.key);
        if (found == platformKeys.end()) {
            params.push_back(field.key);
        } else {
            platformKeys.erase(found);
        }
    }
}

// NOLINTBEGIN(bugprone-macro-parentheses): types cannot be put in parentheses
#define PARAM_VALUE(Type)                                                                         \
    int HiSysEventRecord::GetParamValue(const std::string &param, Type &value) const              \
    {                                                                                             \
        return content_->Get(param, value);                                                       \
    }                                                                                             \
    int HiSysEventRecord::GetParamValue(const std::string &param, std::vector<Type> &value) const \
    {                                                                                             \
        return content_->Get(param, value);                                                       \
    }
// NOLINTEND(bugprone-macro-parentheses)

PARAM_VALUE(int64_t)
PARAM_VALUE(uint64_t)
PARAM_VALUE(double)
PARAM_VALUE(std::string)

}  // namespace OHOS::HiviewDFX
