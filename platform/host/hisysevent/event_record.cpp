// SPDX-License-Identifier: Apache-2.0

#include "hisysevent_record.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "cJSON.h"

namespace OHOS::HiviewDFX {
namespace {

constexpr int SUCCEEDED = 0;
constexpr int NOT_JSON = -1;
constexpr int NO_SUCH_KEY = -2;
constexpr int OTHER_TYPE = -3;

// The fields that the platform adds to an event.
constexpr char DOMAIN_FIELD[] = "domain_";
constexpr char NAME_FIELD[] = "name_";
constexpr char TYPE_FIELD[] = "type_";
constexpr char TIME_FIELD[] = "time_";
constexpr char TIME_ZONE_FIELD[] = "tz_";
constexpr char PID_FIELD[] = "pid_";
constexpr char TID_FIELD[] = "tid_";
constexpr char UID_FIELD[] = "uid_";
constexpr char LEVEL_FIELD[] = "level_";
constexpr char TAG_FIELD[] = "tag_";
constexpr char TRACE_ID_FIELD[] = "traceid_";
constexpr char SPAN_ID_FIELD[] = "spanid_";
constexpr char PARENT_SPAN_ID_FIELD[] = "pspanid_";
constexpr char TRACE_FLAG_FIELD[] = "trace_flag_";
constexpr std::string_view PLATFORM_FIELDS[] = {DOMAIN_FIELD,         NAME_FIELD,      TYPE_FIELD,     TIME_FIELD,
                                                TIME_ZONE_FIELD,      PID_FIELD,       TID_FIELD,      UID_FIELD,
                                                LEVEL_FIELD,          TAG_FIELD,       TRACE_ID_FIELD, SPAN_ID_FIELD,
                                                PARENT_SPAN_ID_FIELD, TRACE_FLAG_FIELD};

enum class Kind { NUMBER, STRING, OTHER };

struct Scalar {
    Kind kind;
    std::string text;  // of a number its characters in the JSON document
    double number;
};

struct Field {
    std::string key;
    bool isList;
    std::vector<Scalar> values;
};

// Reads the fields of an object. The numbers of cJSON are doubles, which hold 53 bits only, so the characters of each
// number are taken from the document, which has the numbers in the same order.
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
    const char *const end = scalar.text.data() + scalar.text.size();
    const auto [parsed, error] = std::from_chars(scalar.text.data(), end, value);
    return scalar.kind == Kind::NUMBER && error == std::errc() && parsed == end;
}

bool Convert(const Scalar &scalar, double &value)
{
    value = scalar.number;
    return scalar.kind == Kind::NUMBER;
}

bool Convert(const Scalar &scalar, std::string &value)
{
    value = scalar.text;
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
            return NOT_JSON;
        }
        const auto found =
            std::find_if(fields.begin(), fields.end(), [&](const Field &field) { return field.key == param; });
        if (found == fields.end()) {
            return NO_SUCH_KEY;
        }
        Value converted{};
        if (!Convert(*found, converted)) {
            return OTHER_TYPE;
        }
        value = std::move(converted);
        return SUCCEEDED;
    }

    template <typename Value>
    Value GetOr(const char *param, Value otherwise) const
    {
        Get(param, otherwise);
        return otherwise;
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

std::string HiSysEventRecord::GetDomain() const
{
    return content_->GetOr<std::string>(DOMAIN_FIELD, "");
}

std::string HiSysEventRecord::GetEventName() const
{
    return content_->GetOr<std::string>(NAME_FIELD, "");
}

HiSysEvent::EventType HiSysEventRecord::GetEventType() const
{
    return static_cast<HiSysEvent::EventType>(content_->GetOr<int64_t>(TYPE_FIELD, 0));
}

std::string HiSysEventRecord::GetLevel() const
{
    return content_->GetOr<std::string>(LEVEL_FIELD, "");
}

std::string HiSysEventRecord::GetTag() const
{
    return content_->GetOr<std::string>(TAG_FIELD, "");
}

std::string HiSysEventRecord::GetTimeZone() const
{
    return content_->GetOr<std::string>(TIME_ZONE_FIELD, "");
}

uint64_t HiSysEventRecord::GetTime() const
{
    return content_->GetOr<uint64_t>(TIME_FIELD, 0);
}

int64_t HiSysEventRecord::GetPid() const
{
    return content_->GetOr<int64_t>(PID_FIELD, 0);
}

int64_t HiSysEventRecord::GetTid() const
{
    return content_->GetOr<int64_t>(TID_FIELD, 0);
}

int64_t HiSysEventRecord::GetUid() const
{
    return content_->GetOr<int64_t>(UID_FIELD, 0);
}

uint64_t HiSysEventRecord::GetTraceId() const
{
    return content_->GetOr<uint64_t>(TRACE_ID_FIELD, 0);
}

uint64_t HiSysEventRecord::GetSpanId() const
{
    return content_->GetOr<uint64_t>(SPAN_ID_FIELD, 0);
}

uint64_t HiSysEventRecord::GetPspanId() const
{
    return content_->GetOr<uint64_t>(PARENT_SPAN_ID_FIELD, 0);
}

int HiSysEventRecord::GetTraceFlag() const
{
    return static_cast<int>(content_->GetOr<int64_t>(TRACE_FLAG_FIELD, 0));
}

// Only the first field with a platform name is the platform's: a writer may use the same name for its own key.
void HiSysEventRecord::GetParamNames(std::vector<std::string> &params) const
{
    params.clear();
    std::vector<std::string_view> platforms(std::begin(PLATFORM_FIELDS), std::end(PLATFORM_FIELDS));
    for (const Field &field : content_->fields) {
        const auto found = std::find(platforms.begin(), platforms.end(), field.key);
        if (found == platforms.end()) {
            params.push_back(field.key);
        } else {
            platforms.erase(found);
        }
    }
}

#define PARAM_VALUE(Type)                                                                         \
    int HiSysEventRecord::GetParamValue(const std::string &param, Type &value) const              \
    {                                                                                             \
        return content_->Get(param, value);                                                       \
    }                                                                                             \
    int HiSysEventRecord::GetParamValue(const std::string &param, std::vector<Type> &value) const \
    {                                                                                             \
        return content_->Get(param, value);                                                       \
    }

PARAM_VALUE(int64_t)
PARAM_VALUE(uint64_t)
PARAM_VALUE(double)
PARAM_VALUE(std::string)

}  // namespace OHOS::HiviewDFX
