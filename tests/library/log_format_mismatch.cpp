// SPDX-License-Identifier: Apache-2.0
//
// The compiler must warn about this file: the format specifier does not match the argument.

#include "ostra_adapter_log.h"

void Mismatch()
{
    OSTRA_LOGI("an int for a string: %s", 5);
}
