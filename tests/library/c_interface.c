/* SPDX-License-Identifier: Apache-2.0
 *
 * Calls the six C entry points from a C source file, which also checks that a C compiler accepts their headers. */

#define _POSIX_C_SOURCE 200112L
#include <stdio.h>
#include <unistd.h>

#include "ostra_dump_adapter.h"
#include "ostra_qos_adapter.h"
#include "ostra_radar_adapter.h"
#include "ostra_version.h"

/* Returns what failed, or a null pointer. */
const char *CallFromC(void)
{
    const int32_t tid = (int32_t)getpid(); /* of the main thread */
    if (SetQos(2, tid) != 0 || ResetQos(tid) != 0) {
        return "SetQos or ResetQos fails";
    }
    /* These return nothing; check only that they link and return. */
    RequestAuth("4711");
    DumpStreamData("never_written", (const unsigned char *)"x", 1);
    RadarWrite("main", 0, "dsoftbus");
    UpdateRes("main", 1, "dsoftbus");

    int major = 0;
    int minor = 0;
    int patch = 0;
    if (sscanf(OSTRA_VERSION, "%d.%d.%d", &major, &minor, &patch) != 3 ||
        OSTRA_VERSION_NUMBER != major * 10000 + minor * 100 + patch) {
        return "OSTRA_VERSION and OSTRA_VERSION_NUMBER differ";
    }
    return NULL;
}
