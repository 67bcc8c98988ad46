/* SPDX-License-Identifier: Apache-2.0
 *
 * Plain-name entry to the stream dump, for callers without the class interface. A C compiler accepts this header.
 * OstraDump::Init and UnInit, which the host calls in C++, must not run while a thread is in here. When memory runs
 * out, std::bad_alloc crosses the entry: build C callers with -fexceptions where they must unwind.
 */

#ifndef OSTRA_DUMP_ADAPTER_H
#define OSTRA_DUMP_ADAPTER_H

#include "ostra_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Dumps `size` bytes to the file `fileName`, a name without a folder, which must not be null: see
 * OstraDump::DumpStreamData. Writes nothing unless the host has switched dumping on with OstraDump::Init. Any thread
 * may call it, each file from one at a time. */
OSTRA_EXPORT void DumpStreamData(const char *fileName, const unsigned char *data, int size);

#ifdef __cplusplus
}
#endif

#endif /* OSTRA_DUMP_ADAPTER_H */
