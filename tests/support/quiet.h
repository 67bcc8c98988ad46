// SPDX-License-Identifier: Apache-2.0
//
// A test program that includes it writes its log to the terminal only when OSTRA_HOST_LOG_LEVEL says so.

#ifndef TESTS_QUIET_H
#define TESTS_QUIET_H

#include <stdlib.h>

__attribute__((constructor)) static void BeQuiet(void)
{
    setenv("OSTRA_HOST_LOG_LEVEL", "off", 0); /* means nothing to a device */
}

#endif /* TESTS_QUIET_H */
