// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// The parcel of an inter-process call. On the host it carries neither remote objects nor file descriptors.

#ifndef HOST_MESSAGE_PARCEL_H
#define HOST_MESSAGE_PARCEL_H

#include "parcel.h"

namespace OHOS {

/// Adds no operations to Parcel.
class MessageParcel : public Parcel {};

}  // namespace OHOS

#endif  // HOST_MESSAGE_PARCEL_H
