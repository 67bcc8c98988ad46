// SPDX-License-Identifier: Apache-2.0

#include "format/format.h"
#include "securec.h"

using namespace ostra::host;

namespace {

// Prints at most destMax - 1 characters. Returns false if the destination is null or its size is invalid.
bool Print(char *dest, size_t destMax, const char *format, va_list arguments, FormatResult &result)
{
    if (dest == nullptr || destMax == 0 || destMax > SECUREC_STRING_MAX_LEN) {
        return false;
    }
    result = format == nullptr ? FormatResult{FormatOutcome::INVALID, 0}
                               : FormatBounded(dest, destMax, FormatDialect::SECUREC, format, arguments);
    if (result.outcome == FormatOutcome::INVALID) {
        *dest = '\0';
    }
    return true;
}

}  // namespace

int vsprintf_s(char *strDest, size_t destMax, const char *format, va_list argList)
{
    FormatResult result{};
    if (!Print(strDest, destMax, format, argList, result)) {
        return -1;
    }
    if (result.outcome != FormatOutcome::COMPLETE) {
        *strDest = '\0';
        return -1;
    }
    return static_cast<int>(result.length);
}

int vsnprintf_s(char *strDest, size_t destMax, size_t count, const char *format, va_list argList)
{
    if (count >= destMax && count <= SECUREC_STRING_MAX_LEN) {
        return vsprintf_s(strDest, destMax, format, argList);
    }
    FormatResult result{};
    const bool isTooLarge = count > SECUREC_STRING_MAX_LEN;
    const size_t size = destMax == 0 || destMax > SECUREC_STRING_MAX_LEN ? destMax : isTooLarge ? 1 : count + 1;
    const bool isPrinted = Print(strDest, size, isTooLarge ? nullptr : format, argList, result);
    return isPrinted && result.outcome == FormatOutcome::COMPLETE ? static_cast<int>(result.length) : -1;
}

int vsnprintf_truncated_s(char *strDest, size_t destMax, const char *format, va_list argList)
{
    FormatResult result{};
    const bool isPrinted = Print(strDest, destMax, format, argList, result);
    return isPrinted && result.outcome != FormatOutcome::INVALID ? static_cast<int>(result.length) : -1;
}

// Each variadic function calls its v-function, so that a program need only replace that one.

int sprintf_s(char *strDest, size_t destMax, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(strDest, destMax, format, arguments);
    va_end(arguments);
    return length;
}

int snprintf_s(char *strDest, size_t destMax, size_t count, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf_s(strDest, destMax, count, format, arguments);
    va_end(arguments);
    return length;
}

int snprintf_truncated_s(char *strDest, size_t destMax, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf_truncated_s(strDest, destMax, format, arguments);
    va_end(arguments);
    return length;
}
