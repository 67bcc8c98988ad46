/* SPDX-License-Identifier: Apache-2.0
 *
 * The plain-name entries, seen by a C compiler and called from C. Ends with the number of checks that failed. */

#define _POSIX_C_SOURCE 200112L
#include <stdio.h>
#include <unistd.h>

#include "ostra_dump_adapter.h"
#include "ostra_qos_adapter.h"
#include "ostra_radar_adapter.h"
#include "ostra_version.h"
#include "support/quiet.h"

static int failures = 0;

static void Check(int isTrue, const char *what)
{
    if (!isTrue) {
        printf("failed: %s\n", what);
        ++failures;
    }
}

int main(void)
{
    const int32_t tid = (int32_t)getpid(); /* that of the main thread */
    const int32_t utility = 2;
    Check(SetQos(utility, tid) == 0, "a level for this thread");
    Check(SetQos(99, tid) == -1, "a level that the platform does not have");
    Check(ResetQos(tid) == 0, "reset of this thread");
    Check(ResetQos(-1) == -1, "reset of no thread");
    RequestAuth("4711"); /* it and the reports have no result: they link, and come back */
    DumpStreamData("never_written", (const unsigned char *)"x", 1);
    Check(access("/data/local/tmp/never_written", F_OK) != 0, "no dump while it is off");
    RadarWrite("main", 0, "dsoftbus");
    UpdateRes("main", 1, "dsoftbus");
    int major = 0, minor = 0, patch = 0;
    sscanf(OSTRA_VERSION, "%d.%d.%d", &major, &minor, &patch);
    Check(OSTRA_VERSION_NUMBER == major * 10000 + minor * 100 + patch, "one version as text and as number");
    return failures;
}
