// SPDX-License-Identifier: Apache-2.0
//
// Must not compile without a warning: the conversion does not fit the argument.

#include "ostra_adapter_log.h"

void Mismatch()
{
    OSTRA_LOGI("a number where a text is expected: %s", 5);
}
