// SPDX-License-Identifier: Apache-2.0

/// @file
/// Notifications to the distributed hardware framework about devices whose state changed, and the names of services,
/// streams, packages and device types.
///
///     #include "ostra_constants.h"
///     #include "ostra_context.h"
///
///     OstraContext &context = OstraContext::GetInstance();
///     context.AddWaitNotify(deviceId, ISOMERISM_CONNECT);
///     context.PublishMessage();       // {"dev_id":"...","isomerism_event":"isomerism_connect"} on topic 8
///
/// Thread-safe. For the lifetime of the string constants see ostra_constants.h.

#ifndef OSTRA_CONTEXT_H
#define OSTRA_CONTEXT_H

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "distributed_hardware_fwk_kit.h"
#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

/// Histogram channel of video encoding.
inline const std::string HISTM_VID_ENC = "histmVidEnc";
/// Histogram channel of video decoding.
inline const std::string HISTM_VID_DEC = "histmVidDec";
/// Histogram channel of audio encoding.
inline const std::string HISTM_AUD_ENC = "histmAudEnc";
/// Histogram channel of audio decoding.
inline const std::string HISTM_AUD_DEC = "histmAudDec";

/// Service name of the camera; its package has the same name.
inline const std::string DCAMERA_SERVICE_NAME = "ohos.dhardware.dcamera";
/// Service name of the screen; its package has the same name.
inline const std::string DSCREEN_SERVICE_NAME = "ohos.dhardware.dscreen";
/// Service name of the microphone.
inline const std::string DAUDIO_DMIC_SERVICE_NAME = "ohos.dhardware.daudio.dmic";
/// Service name of the speaker.
inline const std::string DAUDIO_DSPEAKER_SERVICE_NAME = "ohos.dhardware.daudio.dspeaker";
/// Service name of the microphone in calls.
inline const std::string DCALL_DMIC_SERVICE_NAME = "ohos.dhardware.dcall.dmic";
/// Service name of the speaker in calls.
inline const std::string DCALL_DSPEAKER_SERVICE_NAME = "ohos.dhardware.dcall.dspeaker";

/// Stream of the microphone.
inline const std::string DMIC_STREAM = "dmic_stream";
/// Stream of the screen.
inline const std::string DSCREEN_STREAM = "dscreen_stream";
/// Stream of the speaker.
inline const std::string DSPEAKER_STREAM = "dspeaker_stream";
/// Video stream of the camera.
inline const std::string DCAMERA_STREAM = "dcamera_stream";
/// Pictures of the camera.
inline const std::string DCAMERA_PICTURE = "dcamera_picture";

/// Prefix of all package names.
inline const std::string DHARDWARE_PREFIX = "ohos.dhardware";
/// Package name of audio.
inline const std::string DAUDIO_PKG_NAME = "ohos.dhardware.daudio";
/// Package name of calls.
inline const std::string DCALL_PKG_NAME = "ohos.dhardware.dcall";
/// Package name of the camera.
inline const std::string DCAMERA_PKG_NAME = "ohos.dhardware.dcamera";
/// Package name of the screen.
inline const std::string DSCREEN_PKG_NAME = "ohos.dhardware.dscreen";

/// MIME type of uncompressed video.
inline const std::string MIME_VIDEO_RAW = "video/raw";
/// MIME type of H.264 video.
inline const std::string MIME_VIDEO_AVC = "video/avc";
/// MIME type of H.265 video.
inline const std::string MIME_VIDEO_HEVC = "video/hevc";
/// Pixel format NV12.
inline const std::string PIXEL_FORMAT_NV12 = "nv12";
/// Pixel format NV21.
inline const std::string PIXEL_FORMAT_NV21 = "nv21";
/// Pixel format JPEG.
inline const std::string PIXEL_FORMAT_JPEG = "jpeg";
/// Pixel format I420.
inline const std::string PIXEL_FORMAT_YUVI420 = "yuvi420";
/// Pixel format RGBA8888.
inline const std::string PIXEL_FORMAT_RGBA8888 = "rgba8888";

/// Names of device types. The keys are cast from numbers, since not every release of the framework defines every
/// enumerator.
using DHTypeNames = std::unordered_map<DHType, std::string>;
/// Names in upper case.
inline const DHTypeNames DHTYPE_NAME_MAP = {
    {static_cast<DHType>(0x1), "CAMERA"},  {static_cast<DHType>(0x2), "AUDIO"},
    {static_cast<DHType>(0x8), "SCREEN"},  {static_cast<DHType>(0x10), "GPS"},
    {static_cast<DHType>(0x20), "INPUT"},  {static_cast<DHType>(0x40), "HFP"},
    {static_cast<DHType>(0x80), "A2D"},    {static_cast<DHType>(0x100), "VIRMODEM_AUDIO"},
    {static_cast<DHType>(0x200), "MODEM"},
};
/// Display names of the types that are shown to users.
inline const DHTypeNames DHTYPE_DISPLAY_NAME_MAP = {
    {static_cast<DHType>(0x1), "Camera"},
    {static_cast<DHType>(0x8), "Screen"},
    {static_cast<DHType>(0x20), "Input"},
};

/// The process-wide queue of notifications, and the framework's SDK object.
///
/// AddWaitNotify and PublishMessage hold a lock, even while the framework is called: a listener deadlocks if its
/// OnMessage calls either of them, or waits for a thread that does. GetInstance, AddWaitNotify and PublishMessage throw
/// std::bad_alloc if allocation fails; the queue is then unchanged, and the context remains usable.
class OstraContext {
public:
    /// Returns the context of the process. It is created by the first call and never destroyed.
    OSTRA_EXPORT static OstraContext &GetInstance();

    OstraContext(const OstraContext &) = delete;
    OstraContext &operator=(const OstraContext &) = delete;

    /// Queues `event` for the device `devId`. Replaces an earlier event of the device that has not been published yet.
    ///
    /// Does not validate its arguments: empty strings are queued as well. Strings are published up to their first NUL.
    OSTRA_EXPORT void AddWaitNotify(const std::string &devId, const std::string &event);

    /// Publishes the queued notifications on topic 8 and empties the queue.
    ///
    /// Each notification is the compact JSON object {"dev_id":...,"isomerism_event":...}; they are published in
    /// ascending byte order of device ids. The framework's results are ignored.
    ///
    /// If allocation fails inside cJSON, logs an error and leaves the queue unchanged: the next call publishes all of
    /// it, including notifications that this call has already published. The same applies if a listener throws; the
    /// exception propagates to the caller.
    OSTRA_EXPORT void PublishMessage();

    /// Returns the framework's SDK object, shared with the context; never null. Takes no lock.
    OSTRA_EXPORT std::shared_ptr<DistributedHardwareFwkKit> GetDHFwkKit();

private:
    OstraContext();
    ~OstraContext() = default;

    std::shared_ptr<DistributedHardwareFwkKit> dhFwkKit_;
    std::map<std::string, std::string> waitNotifyMap_;  // event by device id
    std::mutex waitNotifyMutex_;                        // guards waitNotifyMap_
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_CONTEXT_H
