// SPDX-License-Identifier: Apache-2.0
//
// Checks the subcommands of ostra-inspect: for any input, all output is printable, text output has no more rows than
// the report has values, JSON output parses to the same report, and memory use is at most proportional to the input
// size. The first byte of an input selects the subcommand.

#include <malloc.h>

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <cwctype>

#include "fuzz_target.h"
#include "inspect.h"

namespace {

using namespace Fuzz;

// Measured: 1400 bytes for each byte of a list of empty profiles, which become a row and three warnings each.
constexpr size_t MAX_MEMORY_FACTOR = 2000;
constexpr size_t MAX_BASE_MEMORY = 64 * 1024;

size_t g_memory = 0;  // bytes that cJSON has allocated for the library and the tool
size_t g_maxMemory = 0;

void *Allocate(size_t size)
{
    void *const memory = std::malloc(size);
    g_memory += malloc_usable_size(memory);
    g_maxMemory = std::max(g_maxMemory, g_memory);
    return memory;
}

void Release(void *memory)
{
    g_memory -= malloc_usable_size(memory);
    std::free(memory);
}

void CheckPrintable(const std::string &text, const wchar_t *allowed)
{
    static const bool hasLocale = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
    ExpectEqual("locale", true, hasLocale);
    std::mbstate_t state{};
    for (size_t at = 0; at < text.size();) {
        wchar_t character = 0;
        const size_t length = std::mbrtowc(&character, text.data() + at, text.size() - at, &state);
        ExpectEqual("UTF-8 without NUL", true, length > 0 && length <= text.size() - at);
        const bool isDirection =
            std::wcschr(L"\u061C\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069", character) !=
            nullptr;
        const bool isControl = std::iswcntrl(static_cast<wint_t>(character)) != 0 || isDirection;
        ExpectEqual("control character", false, isControl && std::wcschr(allowed, character) == nullptr);
        at += length;
    }
}

size_t CountValues(const cJSON *value)
{
    size_t count = 1;
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, value)
    {
        count += CountValues(member);
    }
    return count;
}

void CheckReport(const cJSON *report)
{
    const std::string text = ToText(report);
    CheckPrintable(text, L"\n");
    const auto rows = static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
    ExpectEqual("more rows than values", true, rows <= CountValues(report));
    for (const bool isIndented : {false, true}) {
        const std::string json = ToJson(report, isIndented);
        CheckPrintable(json, isIndented ? L"\n\t" : L"");
        const JsonTree parsed(cJSON_Parse(json.c_str()));
        ExpectEqual("JSON as reported", true, cJSON_Compare(report, parsed.get(), 1) != 0);
    }
}

void CheckHex(const std::string &digits)
{
    const std::string bytes = ParseHex(digits);
    ExpectEqual("two digits a byte", true, bytes.size() <= digits.size() / 2);
    ExpectEqual("round trip", bytes, ParseHex(ToHex(bytes)));
    CheckPrintable(HexView(bytes), L"\n");
}

void CheckEvent(const std::string &line)
{
    const JsonTree event = ParseEvent(line);
    if (event != nullptr) {
        CheckPrintable(EventRow(event.get()), L"");
        CheckReport(event.get());
    }
}

void CheckFinding(const Finding &finding)
{
    CheckReport(finding.report.get());
    CheckPrintable(Printable(finding.error), L"");
    CheckPrintable(HexView(finding.content), L"\n");
}

void Run(uint8_t subcommand, const std::string &input)
{
    constexpr Finding (*documents[])(const std::string &) = {InspectService, InspectAudio, InspectDevice,
                                                             InspectParcel};
    constexpr size_t count = std::size(documents);
    switch (subcommand % (count + 3)) {
        case count:
            return CheckFinding(InspectFrame(input, {subcommand / 8U, ""}));
        case count + 1:
            return CheckHex(input);
        case count + 2:
            return CheckEvent(input);
        default:
            return CheckFinding(documents[subcommand % (count + 3)](input));
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static cJSON_Hooks hooks = {Allocate, Release};
    cJSON_InitHooks(&hooks);
    CollectLog();
    std::string input = Begin(data, size);
    const uint8_t subcommand = TakeByte(input);
    const size_t before = g_maxMemory = g_memory;
    try {
        Run(subcommand, input);
    } catch (const InputError &error) {
        CheckPrintable(Printable(error.what()), L"");
    }
    TakeReasons();
    ExpectEqual("memory in proportion to the input", true,
                g_maxMemory - before <= MAX_BASE_MEMORY + MAX_MEMORY_FACTOR * size);
    return 0;
}
