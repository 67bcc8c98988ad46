// SPDX-License-Identifier: Apache-2.0

#include "securec.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

constexpr size_t MAX_SIZE = 0x7fffffff;

bool IsBadSize(size_t destMax)
{
    return destMax == 0 || destMax > MAX_SIZE;
}

bool Overlap(const void *left, const void *right, size_t count)
{
    const auto a = reinterpret_cast<uintptr_t>(left);
    const auto b = reinterpret_cast<uintptr_t>(right);
    return a < b ? b - a < count : a - b < count;
}

}  // namespace

errno_t memset_s(void *dest, size_t destMax, int c, size_t count)
{
    if (IsBadSize(destMax) || count > destMax) {
        return ERANGE;
    }
    if (dest == nullptr) {
        return EINVAL;
    }
    std::memset(dest, c, count);
    return 0;
}

errno_t memcpy_s(void *dest, size_t destMax, const void *src, size_t count)
{
    if (IsBadSize(destMax) || count > destMax) {
        return ERANGE;
    }
    if (dest == nullptr || src == nullptr || Overlap(dest, src, count)) {
        return EINVAL;
    }
    std::memcpy(dest, src, count);
    return 0;
}

int sprintf_s(char *strDest, size_t destMax, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(strDest, destMax, format, arguments);
    va_end(arguments);
    return length;
}

int vsprintf_s(char *strDest, size_t destMax, const char *format, va_list argList)
{
    if (strDest == nullptr || IsBadSize(destMax)) {
        return -1;
    }
    const int length = format == nullptr ? -1 : std::vsnprintf(strDest, destMax, format, argList);
    if (length < 0 || static_cast<size_t>(length) >= destMax) {
        strDest[0] = '\0';
        return -1;
    }
    return length;
}
