/* SPDX-License-Identifier: Apache-2.0
 *
 * Calls the six C entry points from a C source file, which also checks that a C compiler accepts their headers. */

#define _POSIX_C_SOURCE 200112L
#include <stdio.h>
#include <string.h>
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

    char version[16];
    snprintf(version, sizeof(version), "%d.%d.%d", OSTRA_VERSION_NUMBER / 10000, OSTRA_VERSION_NUMBER / 100 % 100,
             OSTRA_VERSION_NUMBER % 100);
    return strcmp(version, OSTRA_VERSION) == 0 ? NULL : "OSTRA_VERSION and OSTRA_VERSION_NUMBER differ";
}
