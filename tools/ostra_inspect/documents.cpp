// SPDX-License-Identifier: Apache-2.0
//
// The subcommands service, audio and device. The values are those that the library returns; a second parse shows which
// members it ignores, and why.

#include <strings.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

#include "dh_device_json.h"
#include "inspect.h"
#include "ostra_constants.h"
#include "ostra_device_service.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

constexpr int BOOL = cJSON_True | cJSON_False;

struct MemberRule {
    std::string name;
    int types;  // cJSON type flags
};
using MemberRules = std::vector<MemberRule>;

const MemberRule PROPERTIES = {"properties", cJSON_Object};
const MemberRule CAPABILITIES = {"2102", cJSON_String};
const MemberRule CODECS = {"codecs", cJSON_Array};
const MemberRule PROFILES = {"profiles", cJSON_Array};
const MemberRules PROFILE_FIELDS = {{"sampleRate", cJSON_Number}, {"channel", cJSON_Number}, {"format", cJSON_Number}};
const MemberRule VERSIONS = {"2016", cJSON_String};

// Returns the members and types in a document that the library wrote.
MemberRules ReadRules(const std::string &document)
{
    const JsonTree root(cJSON_Parse(document.c_str()));
    MemberRules rules;
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, root.get())
    {
        rules.push_back({member->string, (member->type & BOOL) != 0 ? BOOL : member->type});
    }
    return rules;
}

// Returns the name of the first of these types.
std::string TypeName(int types)
{
    constexpr std::array<const char *, 7> names = {"a bool",   "a bool",   "null",     "a number",
                                                   "a string", "an array", "an object"};
    size_t bit = 0;
    while (bit + 1 < names.size() && (types & (1 << bit)) == 0) {
        ++bit;
    }
    return names[bit];
}

// Returns the member that a reader uses: the first one of that name (case-insensitive), or null if it has another type.
const cJSON *FindMember(const cJSON *object, const MemberRule &rule)
{
    const cJSON *const member = cJSON_GetObjectItem(object, rule.name.c_str());
    return member != nullptr && (member->type & rule.types) != 0 ? member : nullptr;
}

struct Document {
    JsonTree root;
    std::string error;  // why there is no root
};

// Parses as the library does, and warns about what the library silently ignores.
Document ParseDocument(const std::string &json, List &warnings)
{
    if (json.rfind("\xEF\xBB\xBF", 0) == 0) {
        warnings.Add("the document begins with a byte order mark (BOM), which other readers may reject");
    }
    const size_t size = std::strlen(json.c_str());
    if (size < json.size()) {
        warnings.Add("a NUL at offset " + std::to_string(size) + " of " + std::to_string(json.size()) +
                     " bytes ends the document");
    }
    warnings.Add(NulWarning(json.c_str()));
    const char *end = nullptr;
    JsonTree root(cJSON_ParseWithOpts(json.c_str(), &end, 0));
    const auto length = static_cast<size_t>(end - json.c_str());
    if (root == nullptr) {
        const bool isBracket = *end == '[' || *end == '{';  // cJSON stops here at its nesting limit, too
        return {nullptr, std::string("not valid JSON") + (isBracket ? ", or nested too deeply," : "") +
                             " near offset " + std::to_string(length) + " of " + std::to_string(json.size()) +
                             " bytes"};
    }
    if (json.find_first_not_of(" \t\r\n", length) < size) {
        warnings.Add("trailing bytes ignored: " + std::to_string(size - length));
    }
    if (cJSON_IsObject(root.get()) == 0) {
        warnings.Add("the document is " + TypeName(root->type) + ", not an object, so nothing is read from it");
    }
    return {std::move(root), ""};
}

// Adds the result of the library's reader, and the logged reasons if it rejected the document.
void AddResult(Inspection &inspection, const std::string &name, int32_t result, const std::string &parseError)
{
    const std::string messages = TakeLogMessages();
    AddNumber(inspection.report.get(), "result", result);
    AddString(inspection.report.get(), "result_name", ResultName(result));
    if (result == OSTRA_JSON_SUCCESS) {
        return;
    }
    inspection.error = "not " + name + " (" + std::to_string(result) + " " + ResultName(result) + "): " + messages +
                       (parseError.empty() ? " (nested deeper than 100 levels)" : " (" + parseError + ")");
}

void AddIgnored(List &ignored, const std::string &member, const std::string &reason)
{
    cJSON *const entry = ignored.AddObject();
    AddString(entry, "member", member);
    AddString(entry, "reason", reason);
}

// Adds each member that matches no rule, with the reason. `path` is prepended to the names.
void AddIgnoredMembers(List &ignored, const cJSON *object, const MemberRules &rules, const std::string &path = {})
{
    if (cJSON_IsObject(object) == 0) {
        return;
    }
    std::vector<const cJSON *> firstMembers;
    for (const MemberRule &rule : rules) {
        firstMembers.push_back(cJSON_GetObjectItem(object, rule.name.c_str()));
    }
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, object)
    {
        const auto rule = std::find_if(rules.begin(), rules.end(), [member](const MemberRule &candidate) {
            return strcasecmp(candidate.name.c_str(), member->string) == 0;
        });
        if (rule == rules.end()) {
            AddIgnored(ignored, path + member->string, "unknown");
        } else if (firstMembers[static_cast<size_t>(rule - rules.begin())] != member) {
            AddIgnored(ignored, path + member->string, "repeated; only the first one is read");
        } else if ((member->type & rule->types) == 0) {
            AddIgnored(ignored, path + member->string, TypeName(member->type) + ", not " + TypeName(rule->types));
        }
    }
}

// Warns if the number is not an integer or does not fit into a signed 32-bit value.
void WarnIfNotInt32(List &warnings, const cJSON *number, const std::string &member)
{
    if (cJSON_IsNumber(number) != 0 && number->valuedouble != number->valueint) {
        warnings.Add(member + ": " + FormatValue(number) + " is read as " + std::to_string(number->valueint));
    }
}

// ---- audio

// Adds a codec with the bit that the library derives from it.
void AddCodec(List &codecs, uint32_t codec)
{
    cJSON *const row = codecs.AddObject();
    if (row == nullptr) {
        return;
    }
    DHOSTRAAudioProperties audio;
    audio.codecs_ = {codec};
    audio.UpdataAudioCodec();
    AddNumber(row, "code", static_cast<int32_t>(codec));  // signed as in the document
    AddNumber(row, "bit", audio.audioCodecType_);
    const std::string messages = TakeLogMessages();
    if (audio.audioCodecType_ == 0) {
        AddString(row, "note", "no bit: " + messages);
    }
}

void AddProfile(List &profiles, const DHOSTRAAudioProperties &audio, const AudioProfile &profile)
{
    cJSON *const row = profiles.AddObject();
    const int32_t channels = audio.AudioChannelConvert(profile.channel);
    const int32_t bits = audio.AudioFormatConvert(profile.format);
    AddNumber(row, "sampleRate", profile.sampleRate);
    AddNumber(row, "channel", profile.channel);
    AddNumber(row, "format", profile.format);
    AddNumber(row, "channels", channels);
    AddNumber(row, "bits", bits);
    if (channels == 0 || bits == 0) {
        AddString(row, "note", channels == 0 ? "omitted: unknown channel code" : "omitted: unknown format code");
    }
}

// Reports array elements of the capabilities that the library ignores or converts.
void CheckElements(List &ignored, List &warnings, const cJSON *capabilities)
{
    size_t index = 0;
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, FindMember(capabilities, CODECS))
    {
        const std::string codec = "codecs[" + std::to_string(index++) + "]";
        WarnIfNotInt32(warnings, element, codec);
        if (cJSON_IsNumber(element) == 0) {
            AddIgnored(ignored, codec, TypeName(element->type) + ", not a number");
        }
    }
    index = 0;
    cJSON_ArrayForEach(element, FindMember(capabilities, PROFILES))
    {
        const std::string profile = "profiles[" + std::to_string(index++) + "].";
        AddIgnoredMembers(ignored, element, PROFILE_FIELDS, profile);
        for (const MemberRule &field : PROFILE_FIELDS) {
            const cJSON *const number = FindMember(element, field);
            WarnIfNotInt32(warnings, number, profile + field.name);
            if (number == nullptr) {
                warnings.Add(profile + field.name + " is read as 0");
            }
        }
    }
}

// ---- device

void AddVersions(cJSON *report, const cJSON *properties, List &warnings)
{
    List versions(report, "versions");
    const cJSON *const table = FindMember(properties, VERSIONS);
    if (table == nullptr) {
        warnings.Add("no version table: properties has no string member 2016");
        return;
    }
    const auto [root, parseError] = ParseDocument(table->valuestring, warnings);
    if (root == nullptr) {
        warnings.Add("version table ignored: " + parseError + ": " + table->valuestring);
        return;
    }
    const DHOSTRADeviceJson own;
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, root.get())
    {
        if (entry->string == nullptr || cJSON_IsNumber(entry) == 0) {
            continue;
        }
        cJSON *const row = versions.AddObject();
        AddString(row, "serviceType", entry->string);
        AddCopy(row, "version", entry);
        AddNumber(row, "own_version",
                  own.GetVersionByService(static_cast<int32_t>(std::strtol(entry->string, nullptr, 10))));
    }
}

}  // namespace

std::string NulWarning(std::string_view json)
{
    constexpr std::string_view nul = "\\u0000";
    for (size_t at = json.find('\\'); at < json.size(); at = json.find('\\', at + 2)) {
        if (json.substr(at, nul.size()) == nul) {
            return "a string contains NUL (\\u0000 at offset " + std::to_string(at) + "), which ends it for the reader";
        }
    }
    return "";
}

std::string ResultName(int32_t code)
{
    const std::map<int32_t, const char *> names = {{OSTRA_JSON_SUCCESS, "OSTRA_JSON_SUCCESS"},
                                                   {OSTRA_JSON_CREATE_FAILED, "OSTRA_JSON_CREATE_FAILED"},
                                                   {OSTRA_JSON_ROOT_MISSING, "OSTRA_JSON_ROOT_MISSING"},
                                                   {OSTRA_JSON_STEP_FAILED, "OSTRA_JSON_STEP_FAILED"},
                                                   {OSTRA_JSON_INPUT_INVALID, "OSTRA_JSON_INPUT_INVALID"}};
    const auto name = names.find(code);
    return name == names.end() ? "" : name->second;
}

Inspection InspectService(const std::string &document)
{
    Inspection inspection;
    cJSON *const report = inspection.report.get();
    DHOSTRADeviceServiceJson service;
    const int32_t result = service.Unmarshal(document);
    List warnings(report, "warnings");
    const auto [root, parseError] = ParseDocument(document, warnings);
    AddResult(inspection, "a service document", result, parseError);
    if (!inspection.error.empty()) {
        return inspection;
    }
    std::vector<uint8_t> written;
    OSTRADeviceService().PackServiceData(written);
    const MemberRules rules = ReadRules({written.begin(), written.end()});
    const std::map<std::string, const std::string *> strings = {{"deviceId", &service.deviceId_},
                                                                {"deviceName", &service.deviceName_},
                                                                {"serviceId", &service.serviceId_},
                                                                {"properties", &service.properties_},
                                                                {"status", &service.status_}};
    cJSON *const members = cJSON_AddObjectToObject(report, "members");
    for (const MemberRule &rule : rules) {
        const cJSON *const member = FindMember(root.get(), rule);
        WarnIfNotInt32(warnings, member, rule.name);
        if (member == nullptr) {
            cJSON_AddNullToObject(members, rule.name.c_str());
        } else if (rule.types == cJSON_Number) {
            AddNumber(members, rule.name.c_str(), service.serviceType_);
        } else {
            AddString(members, rule.name.c_str(), *strings.at(rule.name));
        }
    }
    List ignored(report, "ignored");
    AddIgnoredMembers(ignored, root.get(), rules);
    if (FindMember(root.get(), PROPERTIES) != nullptr) {
        Inspection audio = InspectAudio(service.properties_);
        if (!audio.error.empty()) {
            AddString(audio.report.get(), "error", audio.error);
        }
        cJSON_AddItemToObject(report, "audio", audio.report.release());
    }
    return inspection;
}

Inspection InspectAudio(const std::string &document)
{
    Inspection inspection;
    cJSON *const report = inspection.report.get();
    DHOSTRAAudioProperties audio;
    const int32_t result = audio.Unmarshal(document);
    List warnings(report, "warnings");
    List ignored(report, "ignored");
    auto [root, parseError] = ParseDocument(document, warnings);
    AddIgnoredMembers(ignored, root.get(), {CAPABILITIES});
    const bool isAtTopLevel = FindMember(root.get(), CODECS) != nullptr || FindMember(root.get(), PROFILES) != nullptr;
    if (isAtTopLevel && FindMember(root.get(), CAPABILITIES) == nullptr) {
        warnings.Add("codecs and profiles are read only inside the string 2102");
    }
    if (!audio.audioCapablities_.empty()) {
        const Document capabilities = ParseDocument(audio.audioCapablities_, warnings);
        AddIgnoredMembers(ignored, capabilities.root.get(), {CODECS, PROFILES}, "2102.");
        CheckElements(ignored, warnings, capabilities.root.get());
        parseError = capabilities.error.empty() ? "" : "in 2102, " + capabilities.error;
    }
    AddResult(inspection, "audio capabilities", result, parseError);
    AddString(report, "capabilities", audio.audioCapablities_);
    AddNumber(report, "codec_bits", audio.audioCodecType_);
    AddString(report, "profile_string", audio.audioProfiles_);
    if (audio.profiles_.empty() && !audio.audioProfiles_.empty()) {
        AddString(report, "profile_note", "default, because there are no profiles");
    }
    List profiles(report, "profiles");
    for (const AudioProfile &profile : audio.profiles_) {
        AddProfile(profiles, audio, profile);
    }
    List codecs(report, "codecs");
    for (const uint32_t codec : audio.codecs_) {
        AddCodec(codecs, codec);
    }
    return inspection;
}

Inspection InspectDevice(const std::string &document)
{
    Inspection inspection;
    cJSON *const report = inspection.report.get();
    List warnings(report, "warnings");
    const auto [root, parseError] = ParseDocument(document, warnings);
    if (cJSON_IsObject(root.get()) == 0) {
        throw InputError("not a device document: " +
                         (root == nullptr ? parseError : TypeName(root->type) + ", not an object"));
    }
    std::string written;
    DHOSTRADeviceJson().Marshal(written);
    const MemberRules rules = ReadRules(written);
    cJSON *const members = cJSON_AddObjectToObject(report, "members");
    for (const MemberRule &rule : rules) {
        const cJSON *const member = FindMember(root.get(), rule);
        if (member == nullptr || rule.types != cJSON_Object) {
            AddCopy(members, rule.name.c_str(), member);
        }
    }
    const cJSON *const properties = FindMember(root.get(), PROPERTIES);
    AddVersions(report, properties, warnings);
    List ignored(report, "ignored");
    AddIgnoredMembers(ignored, root.get(), rules);
    AddIgnoredMembers(ignored, properties, {VERSIONS}, "properties.");
    return inspection;
}
