/* SPDX-License-Identifier: Apache-2.0
 */

/** @file
 * C interface of stream dumps.
 *
 *     DumpStreamData("mic.pcm", data, size);      // after OstraDump::GetInstance().Init() in C++
 *
 * **Requires C++ setup:** nothing is written until the host process calls OstraDump::Init (ostra_dump.h) in C++. Init
 * and UnInit must not run during a call. Thread-safe for different files. Throws std::bad_alloc if allocation fails:
 * compile C callers with -fexceptions if exceptions must propagate through them. Compiles as C and C++.
 */

#ifndef OSTRA_DUMP_ADAPTER_H
#define OSTRA_DUMP_ADAPTER_H

#include "ostra_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Writes `size` bytes to the dump `fileName`, a name without directory; see OstraDump::DumpStreamData.
 *
 * `fileName` must not be null. Writes nothing if dumps are disabled.
 */
OSTRA_EXPORT void DumpStreamData(const char *fileName, const unsigned char *data, int size);

#ifdef __cplusplus
}
#endif

#endif /* OSTRA_DUMP_ADAPTER_H */
