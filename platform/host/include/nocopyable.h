// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// Macros for classes that cannot be copied or moved. Use them in the class definition, with the name of the class.

#ifndef HOST_NOCOPYABLE_H
#define HOST_NOCOPYABLE_H

#define DISALLOW_COPY(ClassName)           \
    ClassName(const ClassName &) = delete; \
    ClassName &operator=(const ClassName &) = delete

#define DISALLOW_MOVE(ClassName)      \
    ClassName(ClassName &&) = delete; \
    ClassName &operator=(ClassName &&) = delete

#define DISALLOW_COPY_AND_MOVE(ClassName) \
    DISALLOW_COPY(ClassName);             \
    DISALLOW_MOVE(ClassName)

#endif  // HOST_NOCOPYABLE_H
