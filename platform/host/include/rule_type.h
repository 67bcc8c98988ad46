// SPDX-License-Identifier: Apache-2.0
//
// How the texts of a listener's rule are compared.

#ifndef HOST_RULE_TYPE_H
#define HOST_RULE_TYPE_H

namespace OHOS::HiviewDFX {

// The host compares whole words and takes no rule of another type.
enum RuleType { WHOLE_WORD = 1, PREFIX, REGULAR };

}  // namespace OHOS::HiviewDFX

#endif  // HOST_RULE_TYPE_H
