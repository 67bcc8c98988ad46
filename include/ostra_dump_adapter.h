/* SPDX-License-Identifier: Apache-2.0
 */

/** @file
 * C function for stream dumps.
 *
 *     DumpStreamData("mic.pcm", data, size);      // after OstraDump::GetInstance().Init() in C++
 *
 * **Needs C++ first:** nothing is written until the host calls OstraDump::Init (ostra_dump.h) in C++. Init and UnInit
 * must not run during a call. Thread-safe for different files. Throws std::bad_alloc if allocation fails: compile C
 * callers with -fexceptions if they must unwind. Compiles as C and C++.
 */

#ifndef OSTRA_DUMP_ADAPTER_H
#define OSTRA_DUMP_ADAPTER_H

#include "ostra_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Writes `size` bytes to the dump `fileName`, a name without directory; see OstraDump::DumpStreamData.
 *
 * `fileName` must not be null. Writes nothing while dumps are off.
 */
OSTRA_EXPORT void DumpStreamData(const char *fileName, const unsigned char *data, int size);

#ifdef __cplusplus
}
#endif

#endif /* OSTRA_DUMP_ADAPTER_H */
