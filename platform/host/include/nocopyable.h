// SPDX-License-Identifier: Apache-2.0
//
// Classes that are not copied or not moved: the macro stands within the class, which names itself.

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
