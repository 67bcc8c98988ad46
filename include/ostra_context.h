// SPDX-License-Identifier: Apache-2.0
//
// The process-wide context through which the host tells the distributed hardware framework about devices whose state
// changed, and the names that belong to it.
//
//     #include "ostra_constants.h"
//     #include "ostra_context.h"
//
//     OstraContext &context = OstraContext::GetInstance();
//     context.AddWaitNotify(deviceId, ISOMERISM_CONNECT);
//     context.PublishMessage();       // {"dev_id":"...","isomerism_event":"isomerism_connect"} on topic 8
//
// All operations may be called from any thread at once. AddWaitNotify and PublishMessage wait for each other, also
// while the framework is called: a listener must not call either from inside OnMessage, nor wait there for a thread
// that does. What a listener raises comes out of PublishMessage, as does std::bad_alloc when memory for a text runs
// out; AddWaitNotify and the first GetInstance raise that, too. The context works on afterwards, and its queue is as it
// was.

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

// Names of the histogram channels.
inline const std::string HISTM_VID_ENC = "histmVidEnc";
inline const std::string HISTM_VID_DEC = "histmVidDec";
inline const std::string HISTM_AUD_ENC = "histmAudEnc";
inline const std::string HISTM_AUD_DEC = "histmAudDec";

// Service names.
inline const std::string DCAMERA_SERVICE_NAME = "ohos.dhardware.dcamera";
inline const std::string DSCREEN_SERVICE_NAME = "ohos.dhardware.dscreen";
inline const std::string DAUDIO_DMIC_SERVICE_NAME = "ohos.dhardware.daudio.dmic";
inline const std::string DAUDIO_DSPEAKER_SERVICE_NAME = "ohos.dhardware.daudio.dspeaker";
inline const std::string DCALL_DMIC_SERVICE_NAME = "ohos.dhardware.dcall.dmic";
inline const std::string DCALL_DSPEAKER_SERVICE_NAME = "ohos.dhardware.dcall.dspeaker";

// Stream names.
inline const std::string DMIC_STREAM = "dmic_stream";
inline const std::string DSCREEN_STREAM = "dscreen_stream";
inline const std::string DSPEAKER_STREAM = "dspeaker_stream";
inline const std::string DCAMERA_STREAM = "dcamera_stream";
inline const std::string DCAMERA_PICTURE = "dcamera_picture";

// Package names. Camera and screen have a service and a package of the same name.
inline const std::string DHARDWARE_PREFIX = "ohos.dhardware";
inline const std::string DAUDIO_PKG_NAME = "ohos.dhardware.daudio";
inline const std::string DCALL_PKG_NAME = "ohos.dhardware.dcall";
inline const std::string DCAMERA_PKG_NAME = "ohos.dhardware.dcamera";
inline const std::string DSCREEN_PKG_NAME = "ohos.dhardware.dscreen";

// Formats of video and pictures.
inline const std::string MIME_VIDEO_RAW = "video/raw";
inline const std::string MIME_VIDEO_AVC = "video/avc";
inline const std::string MIME_VIDEO_HEVC = "video/hevc";
inline const std::string PIXEL_FORMAT_NV12 = "nv12";
inline const std::string PIXEL_FORMAT_NV21 = "nv21";
inline const std::string PIXEL_FORMAT_JPEG = "jpeg";
inline const std::string PIXEL_FORMAT_YUVI420 = "yuvi420";
inline const std::string PIXEL_FORMAT_RGBA8888 = "rgba8888";

// Names of device types. Not every release of the framework names all of them, so they are written by value.
using DHTypeNames = std::unordered_map<DHType, std::string>;
// The names in capitals.
inline const DHTypeNames DHTYPE_NAME_MAP = {
    {static_cast<DHType>(0x1), "CAMERA"},  {static_cast<DHType>(0x2), "AUDIO"},
    {static_cast<DHType>(0x8), "SCREEN"},  {static_cast<DHType>(0x10), "GPS"},
    {static_cast<DHType>(0x20), "INPUT"},  {static_cast<DHType>(0x40), "HFP"},
    {static_cast<DHType>(0x80), "A2D"},    {static_cast<DHType>(0x100), "VIRMODEM_AUDIO"},
    {static_cast<DHType>(0x200), "MODEM"},
};
// The names as people read them, for the types that are shown.
inline const DHTypeNames DHTYPE_DISPLAY_NAME_MAP = {
    {static_cast<DHType>(0x1), "Camera"},
    {static_cast<DHType>(0x8), "Screen"},
    {static_cast<DHType>(0x20), "Input"},
};

// The queue of notifications that wait to be published, and the framework's SDK object.
class OstraContext {
public:
    // The one context, made on the first call and never destroyed.
    OSTRA_EXPORT static OstraContext &GetInstance();

    OstraContext(const OstraContext &) = delete;
    OstraContext &operator=(const OstraContext &) = delete;

    // Queues `event` for the device, in place of any earlier one that was not published yet. Nothing is validated:
    // empty texts are queued as well. Texts go into the notification up to their first zero byte.
    OSTRA_EXPORT void AddWaitNotify(const std::string &devId, const std::string &event);

    // Publishes the queued notifications on topic 8, in ascending byte order of device id, each as the compact JSON
    // object {"dev_id":...,"isomerism_event":...}, then empties the queue. When such an object cannot be made for want
    // of memory, an error is logged and the queue stays as it was, so that the next call publishes all of it, including
    // what has gone out already. What the framework returns is not looked at.
    OSTRA_EXPORT void PublishMessage();

    // The framework's SDK object, shared with the context; never null. Takes no lock.
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
