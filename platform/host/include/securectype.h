// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// The limits of the bounds-checked functions (securec.h). A C compiler accepts this header.

#ifndef HOST_SECURECTYPE_H
#define HOST_SECURECTYPE_H

/// The largest size of a destination: of memory, and of a string with its null terminator.
#define SECUREC_MEM_MAX_LEN (0x7fffffffUL)
#define SECUREC_STRING_MAX_LEN (0x7fffffffUL)

#endif  // HOST_SECURECTYPE_H
