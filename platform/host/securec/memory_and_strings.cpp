// SPDX-License-Identifier: Apache-2.0

#include "securec.h"

#include <cstdint>
#include <cstring>
#include <optional>

namespace {

bool IsInvalidSize(size_t destMax)
{
    return destMax == 0 || destMax > SECUREC_MEM_MAX_LEN;
}

uintptr_t Address(const void *pointer)
{
    return reinterpret_cast<uintptr_t>(pointer);
}

// Returns whether one of two different blocks begins inside the other.
bool Overlap(const void *dest, size_t destSize, const void *src, size_t srcSize)
{
    return Address(dest) < Address(src) ? Address(src) - Address(dest) < destSize
                                        : Address(dest) != Address(src) && Address(dest) - Address(src) < srcSize;
}

// The checks common to all functions. `clear` resets a destination of valid size and returns the given code.
template <typename Clear>
errno_t CheckPointers(const void *dest, size_t destMax, const void *src, const Clear &clear)
{
    if (IsInvalidSize(destMax)) {
        return ERANGE;
    }
    if (dest == nullptr) {
        return EINVAL;
    }
    return src == nullptr ? clear(EINVAL_AND_RESET) : EOK;
}

template <bool isOverlapAllowed>
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
    if (!isOverlapAllowed && Overlap(dest, count, src, count)) {
        return clear(EOVERLAP_AND_RESET);
    }
    std::memmove(dest, src, count);
    return EOK;
}

// `limit` is the maximum number of characters to copy.
errno_t CopyString(char *dest, size_t destMax, const char *src, size_t limit)
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

// `limit` is the maximum number of characters to append, if any.
errno_t AppendString(char *dest, size_t destMax, const char *src, std::optional<size_t> limit)
{
    const auto clear = [=](errno_t code) {
        *dest = '\0';
        return code;
    };
    if (const errno_t code = CheckPointers(dest, destMax, src, clear); code != EOK) {
        return code;
    }
    if (limit > SECUREC_STRING_MAX_LEN) {  // false if there is no limit
        return clear(ERANGE_AND_RESET);
    }
    const size_t used = strnlen(dest, destMax);
    const size_t available = destMax - used;
    const size_t length = strnlen(src, limit.value_or(available));
    if (available == 0 && Address(src) >= Address(dest) + destMax) {
        return clear(EINVAL_AND_RESET);
    }
    // The platform does not count the null terminators, and treats adjacent blocks as overlapping.
    const bool isOverlap = Address(dest) < Address(src) ? Address(dest) + used + length >= Address(src)
                                                        : src != dest && Address(src) + length >= Address(dest);
    if (isOverlap) {
        return clear(EOVERLAP_AND_RESET);
    }
    if (available == 0) {
        return clear(EINVAL_AND_RESET);
    }
    if (dest == src || length >= available) {
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
    const void *const noSource = &c;  // anything but null
    if (const errno_t code = CheckPointers(dest, destMax, noSource, [](errno_t) { return EOK; }); code != EOK) {
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
    return CopyString(strDest, destMax, strSrc, SECUREC_STRING_MAX_LEN);
}

errno_t strncpy_s(char *strDest, size_t destMax, const char *strSrc, size_t count)
{
    return CopyString(strDest, destMax, strSrc, count);
}

errno_t strcat_s(char *strDest, size_t destMax, const char *strSrc)
{
    return AppendString(strDest, destMax, strSrc, std::nullopt);
}

errno_t strncat_s(char *strDest, size_t destMax, const char *strSrc, size_t count)
{
    return AppendString(strDest, destMax, strSrc, count);
}

char *strtok_s(char *strToken, const char *strDelimit, char **context)
{
    if (strDelimit == nullptr || context == nullptr || (strToken == nullptr && *context == nullptr)) {
        return nullptr;
    }
    return strtok_r(strToken, strDelimit, context);
}
