// SPDX-License-Identifier: Apache-2.0
//
// The parcel that an inter-process call carries. On the host it is a plain parcel: it carries no remote objects and no
// file descriptors.

#ifndef HOST_MESSAGE_PARCEL_H
#define HOST_MESSAGE_PARCEL_H

#include "parcel.h"

namespace OHOS {

class MessageParcel : public Parcel {};

}  // namespace OHOS

#endif  // HOST_MESSAGE_PARCEL_H
