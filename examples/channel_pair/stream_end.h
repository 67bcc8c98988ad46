// SPDX-License-Identifier: Apache-2.0
//
// What the frame at the end of a stream says: how much was sent, and which faults were put in the way on purpose.

#ifndef EXAMPLES_STREAM_END_H
#define EXAMPLES_STREAM_END_H

#include <optional>
#include <string>

#include "damage.h"
#include "transport.h"

struct StreamEnd {
    LinkTotals sent;
    LinkTotals spoilt;    // those of the sent frames that cannot arrive
    DamageCount damaged;  // the faults; some leave the frame itself whole
};

// Returns false, with the reason in errno, when the frame cannot be sent.
bool SendEnd(FrameSender &sender, const DamageCount &damaged);

// Empty for bytes that do not say so.
std::optional<StreamEnd> ReadEnd(ByteView content);

// What is wrong with a stream of which this arrived; empty when nothing is.
std::string Shortfall(const StreamEnd &end, const LinkTotals &arrived, const DamageCount &damaged);

#endif  // EXAMPLES_STREAM_END_H
