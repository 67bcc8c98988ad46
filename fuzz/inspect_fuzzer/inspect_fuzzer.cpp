// SPDX-License-Identifier: Apache-2.0
//
// Runs every subcommand of ostra-inspect on the input, as bytes and as hexadecimal digits. All output must be
// printable, and JSON output must parse to the same report.

#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <cwctype>

#include "fuzz_target.h"
#include "inspect.h"

namespace {

using namespace Fuzz;

constexpr wchar_t DIRECTIONS[] = L"\u061C\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069";

// Fails unless `string` is UTF-8 without control characters other than `allowed`.
void CheckPrintable(const std::string &string, const wchar_t *allowed)
{
    std::wstring characters(string.size(), L'?');
    const size_t length = std::mbstowcs(characters.data(), string.c_str(), characters.size());
    ExpectEqual("UTF-8 without NUL", true, length <= string.size() && string.find('\0') == std::string::npos);
    for (const wchar_t character : characters.substr(0, length)) {
        const bool isControl =
            std::iswcntrl(static_cast<wint_t>(character)) != 0 || std::wcschr(DIRECTIONS, character) != nullptr;
        ExpectEqual("control character", false, isControl && std::wcschr(allowed, character) == nullptr);
    }
}

void CheckInspection(const Inspection &inspection)
{
    const cJSON *const report = inspection.report.get();
    CheckPrintable(ToText(report), L"\n");
    CheckPrintable(Escape(inspection.error), L"");
    CheckPrintable(HexDump(inspection.content), L"\n");
    for (const bool isIndented : {false, true}) {
        const std::string json = ToJson(report, isIndented);
        CheckPrintable(json, isIndented ? L"\n\t" : L"");
        const JsonTree parsed(cJSON_Parse(json.c_str()));
        ExpectEqual("JSON as reported", true, cJSON_Compare(report, parsed.get(), 1) != 0);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string input = Begin(data, size);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    CollectLog();
    constexpr auto inspectFrame = [](const std::string &bytes) {
        return InspectFrame(bytes, {});
    };
    for (const auto inspect : {+inspectFrame, InspectService, InspectAudio, InspectDevice, InspectParcel}) {
        for (const bool isHex : {false, true}) {
            try {
                CheckInspection(inspect(isHex ? ParseHex(input) : input));
            } catch (const InputError &error) {
                CheckPrintable(Escape(error.what()), L"");
            }
        }
    }
    ExpectEqual("hexadecimal round trip", input, ParseHex(ToHex(input)));
    Inspection event;
    event.report = ParseEvent(input);
    if (event.report != nullptr) {
        CheckPrintable(FormatEvent(event.report.get()), L"");
        CheckInspection(event);
    }
    TakeLogMessages();
    return 0;
}
