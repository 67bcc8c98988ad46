// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// How a rule compares names (hisysevent_rules.h).

#ifndef HOST_RULE_TYPE_H
#define HOST_RULE_TYPE_H

namespace OHOS::HiviewDFX {

/// The host supports WHOLE_WORD only.
enum RuleType { WHOLE_WORD = 1, PREFIX, REGULAR };

}  // namespace OHOS::HiviewDFX

#endif  // HOST_RULE_TYPE_H
