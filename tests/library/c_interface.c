/* SPDX-License-Identifier: Apache-2.0
 *
 * Calls the six C entry points from a C source file, which also checks that a C compiler accepts their headers. */

#define _POSIX_C_SOURCE 200112L
#include <unistd.h>

#include "ostra_dump_adapter.h"
#include "ostra_qos_adapter.h"
#include "ostra_radar_adapter.h"

/* Returns whether the calls that return a result succeed. */
int CallFromC(void)
{
    const int32_t tid = (int32_t)getpid(); /* of the main thread */
    RequestAuth("4711");
    DumpStreamData("never_written", (const unsigned char *)"x", 1);
    RadarWrite("main", 0, "dsoftbus");
    UpdateRes("main", 1, "dsoftbus");
    return SetQos(2, tid) == 0 && ResetQos(tid) == 0;
}
