// SPDX-License-Identifier: Apache-2.0
//
// A test program that includes this header logs to the terminal only if OSTRA_HOST_LOG_LEVEL is set.

#ifndef TESTS_QUIET_H
#define TESTS_QUIET_H

#include <stdlib.h>

__attribute__((constructor)) static void BeQuiet(void)
{
    setenv("OSTRA_HOST_LOG_LEVEL", "off", 0); /* has no effect on a device */
}

#endif /* TESTS_QUIET_H */
