// SPDX-License-Identifier: Apache-2.0

#include "securec.h"

#include <cstdint>
#include <cstring>

namespace {

bool IsBadSize(size_t destMax)
{
    return destMax == 0 || destMax > SECUREC_MEM_MAX_LEN;
}

uintptr_t Address(const void *pointer)
{
    return reinterpret_cast<uintptr_t>(pointer);
}

// True when one of two different blocks begins inside the other.
bool Overlap(const void *dest, size_t destSize, const void *src, size_t srcSize)
{
    return Address(dest) < Address(src) ? Address(src) - Address(dest) < destSize
                                        : Address(dest) != Address(src) && Address(dest) - Address(src) < srcSize;
}

// What every function refuses first. `clear` empties a destination of valid size.
template <typename Clear>
errno_t CheckPointers(const void *dest, size_t destMax, const void *src, const Clear &clear)
{
    if (IsBadSize(destMax)) {
        return ERANGE;
    }
    if (dest == nullptr) {
        return EINVAL;
    }
    return src == nullptr ? clear(EINVAL_AND_RESET) : EOK;
}

template <bool isOverlapFine>
errno_t CopyBytes(void *dest, size_t destMax, const void *src, size_t count)
{
    const auto clear = [=](errno_t code) {
        std::memset(dest, 0, destMax);
        return code;
    };
    if (const errno_t code = CheckPointers(dest, destMax, src, clear); code != EOK) {
        return code;
    }
    if (count > destMax) {
        return clear(ERANGE_AND_RESET);
    }
    if (!isOverlapFine && Overlap(dest, count, src, count)) {
        return clear(EOVERLAP_AND_RESET);
    }
    std::memmove(dest, src, count);
    return EOK;
}

// Texts: `limit` is the most characters of the source that count.
errno_t CopyText(char *dest, size_t destMax, const char *src, size_t limit)
{
    const auto clear = [=](errno_t code) {
        *dest = '\0';
        return code;
    };
    if (const errno_t code = CheckPointers(dest, destMax, src, clear); code != EOK) {
        return code;
    }
    const size_t length = strnlen(src, limit < destMax ? limit : destMax);
    if (limit > SECUREC_STRING_MAX_LEN || length >= destMax) {
        return clear(ERANGE_AND_RESET);
    }
    if (Overlap(dest, length + 1, src, length + 1)) {
        return clear(EOVERLAP_AND_RESET);
    }
    std::memmove(dest, src, length);
    dest[length] = '\0';
    return EOK;
}

errno_t AppendText(char *dest, size_t destMax, const char *src, size_t limit)
{
    const auto clear = [=](errno_t code) {
        *dest = '\0';
        return code;
    };
    if (const errno_t code = CheckPointers(dest, destMax, src, clear); code != EOK) {
        return code;
    }
    if (limit > SECUREC_STRING_MAX_LEN) {
        return clear(ERANGE_AND_RESET);
    }
    const size_t used = strnlen(dest, destMax);
    if (used == destMax) {
        return clear(EINVAL_AND_RESET);
    }
    const size_t length = strnlen(src, limit);
    if (Overlap(dest, used + length + 1, src, length + 1)) {
        return clear(EOVERLAP_AND_RESET);
    }
    if (dest == src || length >= destMax - used) {
        return clear(ERANGE_AND_RESET);
    }
    std::memcpy(dest + used, src, length);
    dest[used + length] = '\0';
    return EOK;
}

}  // namespace

errno_t memset_s(void *dest, size_t destMax, int c, size_t count)
{
    if (dest != nullptr && destMax == 0 && count == 0) {
        return EOK;
    }
    if (const errno_t code = CheckPointers(dest, destMax, &c, [](errno_t) { return EOK; }); code != EOK) {
        return code;
    }
    std::memset(dest, c, count > destMax ? destMax : count);
    return count > destMax ? ERANGE_AND_RESET : EOK;
}

errno_t memcpy_s(void *dest, size_t destMax, const void *src, size_t count)
{
    return CopyBytes<false>(dest, destMax, src, count);
}

errno_t memmove_s(void *dest, size_t destMax, const void *src, size_t count)
{
    return CopyBytes<true>(dest, destMax, src, count);
}

errno_t strcpy_s(char *strDest, size_t destMax, const char *strSrc)
{
    return CopyText(strDest, destMax, strSrc, SECUREC_STRING_MAX_LEN);
}

errno_t strncpy_s(char *strDest, size_t destMax, const char *strSrc, size_t count)
{
    return CopyText(strDest, destMax, strSrc, count);
}

errno_t strcat_s(char *strDest, size_t destMax, const char *strSrc)
{
    return AppendText(strDest, destMax, strSrc, destMax <= SECUREC_STRING_MAX_LEN ? destMax : 0);
}

errno_t strncat_s(char *strDest, size_t destMax, const char *strSrc, size_t count)
{
    return AppendText(strDest, destMax, strSrc, count);
}

char *strtok_s(char *strToken, const char *strDelimit, char **context)
{
    if (strDelimit == nullptr || context == nullptr || (strToken == nullptr && *context == nullptr)) {
        return nullptr;
    }
    return strtok_r(strToken, strDelimit, context);
}
