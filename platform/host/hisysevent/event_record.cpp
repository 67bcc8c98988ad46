// SPDX-License-Identifier: Apache-2.0

#include "hisysevent_record.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "cJSON.h"

namespace OHOS::HiviewDFX {
namespace {

constexpr int SUCCEEDED = 0;
constexpr int NO_JSON = -1;
constexpr int NO_SUCH_KEY = -2;
constexpr int OTHER_TYPE = -3;

// What the platform adds to an event.
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

enum class Kind { NUMBER, TEXT, OTHER };

struct Scalar {
    Kind kind;
    std::string text;  // of a number its characters in the JSON text
    double number;
};

struct Field {
    std::string key;
    bool isList;
    std::vector<Scalar> values;
};

// Reads the fields of an object. cJSON's numbers are doubles, which keep 53 bits, so the characters of each number are
// taken from the text, where the numbers stand in the same order.
class FieldReader {
public:
    explicit FieldReader(std::string_view text) : text_(text)
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
            return {Kind::TEXT, item->valuestring, 0};
        }
        for (const cJSON *child = item->child; child != nullptr; child = child->next) {
            ReadScalar(child);  // moves behind the numbers of a nested value
        }
        return {Kind::OTHER, "", 0};
    }

    std::string NextNumber()
    {
        constexpr char numberCharacters[] = "+-.0123456789eE";
        at_ = text_.find_first_of("-0123456789\"", at_);
        while (text_[at_] == '"') {
            at_ = text_.find_first_of("-0123456789\"", EndOfText(at_));
        }
        const size_t begin = at_;
        at_ = std::min(text_.find_first_not_of(numberCharacters, at_), text_.size());
        return std::string(text_.substr(begin, at_ - begin));
    }

    // The position behind the closing quote.
    size_t EndOfText(size_t quote) const
    {
        size_t at = quote + 1;
        while (text_[at] != '"') {
            at += text_[at] == '\\' ? 2 : 1;
        }
        return at + 1;
    }

    std::string_view text_;
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
    return scalar.kind == Kind::TEXT;
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
    return ValueOr<std::string>(DOMAIN_FIELD, "");
}

std::string HiSysEventRecord::GetEventName() const
{
    return ValueOr<std::string>(NAME_FIELD, "");
}

HiSysEvent::EventType HiSysEventRecord::GetEventType() const
{
    return static_cast<HiSysEvent::EventType>(ValueOr<int64_t>(TYPE_FIELD, 0));
}

std::string HiSysEventRecord::GetLevel() const
{
    return ValueOr<std::string>(LEVEL_FIELD, "");
}

std::string HiSysEventRecord::GetTag() const
{
    return ValueOr<std::string>(TAG_FIELD, "");
}

std::string HiSysEventRecord::GetTimeZone() const
{
    return ValueOr<std::string>(TIME_ZONE_FIELD, "");
}

uint64_t HiSysEventRecord::GetTime() const
{
    return ValueOr<uint64_t>(TIME_FIELD, 0);
}

int64_t HiSysEventRecord::GetPid() const
{
    return ValueOr<int64_t>(PID_FIELD, 0);
}

int64_t HiSysEventRecord::GetTid() const
{
    return ValueOr<int64_t>(TID_FIELD, 0);
}

int64_t HiSysEventRecord::GetUid() const
{
    return ValueOr<int64_t>(UID_FIELD, 0);
}

uint64_t HiSysEventRecord::GetTraceId() const
{
    return ValueOr<uint64_t>(TRACE_ID_FIELD, 0);
}

uint64_t HiSysEventRecord::GetSpanId() const
{
    return ValueOr<uint64_t>(SPAN_ID_FIELD, 0);
}

uint64_t HiSysEventRecord::GetPspanId() const
{
    return ValueOr<uint64_t>(PARENT_SPAN_ID_FIELD, 0);
}

int HiSysEventRecord::GetTraceFlag() const
{
    return static_cast<int>(ValueOr<int64_t>(TRACE_FLAG_FIELD, 0));
}

// The first field of each platform name is the platform's: a writer may use the same name for a key of its own.
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

template <typename Value>
int HiSysEventRecord::GetParamValue(const std::string &param, Value &value) const
{
    if (!content_->isObject) {
        return NO_JSON;
    }
    const auto found = std::find_if(content_->fields.begin(), content_->fields.end(),
                                    [&](const Field &field) { return field.key == param; });
    if (found == content_->fields.end()) {
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
Value HiSysEventRecord::ValueOr(const char *name, Value otherwise) const
{
    GetParamValue(name, otherwise);
    return otherwise;
}

template int HiSysEventRecord::GetParamValue(const std::string &, int64_t &) const;
template int HiSysEventRecord::GetParamValue(const std::string &, uint64_t &) const;
template int HiSysEventRecord::GetParamValue(const std::string &, double &) const;
template int HiSysEventRecord::GetParamValue(const std::string &, std::string &) const;
template int HiSysEventRecord::GetParamValue(const std::string &, std::vector<int64_t> &) const;
template int HiSysEventRecord::GetParamValue(const std::string &, std::vector<uint64_t> &) const;
template int HiSysEventRecord::GetParamValue(const std::string &, std::vector<double> &) const;
template int HiSysEventRecord::GetParamValue(const std::string &, std::vector<std::string> &) const;

}  // namespace OHOS::HiviewDFX
