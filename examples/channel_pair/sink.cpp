// SPDX-License-Identifier: Apache-2.0

#include <cJSON.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "dh_device_json.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_constants.h"
#include "ostra_context.h"
#include "ostra_dump.h"
#include "ostra_dump_adapter.h"
#include "pair.h"
#include "parameter.h"
#include "report.h"
#include "transport.h"

using namespace OHOS::DistributedHardware;
using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

constexpr char MISSING[] = "missing";

bool WriteAll(int fd, ByteView bytes)
{
    while (bytes.size > 0) {
        const ssize_t written = write(fd, bytes.data, bytes.size);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        const auto count = static_cast<size_t>(written < 0 ? 0 : written);
        bytes = {bytes.data + count, bytes.size - count};
    }
    return true;
}

std::string AsString(ByteView bytes)
{
    return {bytes.data, bytes.data + bytes.size};
}

// Returns an empty map if the parcel is not valid.
ParcelMap ReadMap(ByteView content)
{
    OHOS::MessageParcel parcel;
    ParcelMap map;
    const bool isRead = parcel.WriteBuffer(content.data, content.size) && IpcUtils::UnMarshalling(parcel, map);
    return isRead ? map : ParcelMap();
}

// Returns a description of the service, or MISSING if the document cannot be read.
std::string DescribeService(const std::string &document)
{
    DHOSTRADeviceServiceJson service;
    DHOSTRAAudioProperties &audio = service.audioProperties_;
    if (service.Unmarshal(document) != OSTRA_JSON_SUCCESS ||
        audio.Unmarshal(service.properties_) != OSTRA_JSON_SUCCESS) {
        return MISSING;
    }
    return GetAnonyString(service.serviceId_) + " of type " + GetAnonyInt32(service.serviceType_) + ", codec bits " +
           std::to_string(audio.audioCodecType_) + ", profiles " + audio.audioProfiles_;
}

// Receives the notifications that the context publishes, as another part of the host process would.
struct Notifications : IPublisherListener {
    void OnMessage(const DHTopic /* topic */, const std::string &message) override
    {
        const std::unique_ptr<cJSON, decltype(&cJSON_Delete)> json(cJSON_Parse(message.c_str()), cJSON_Delete);
        const auto member = [&json](const std::string &key) {
            const char *value = cJSON_GetStringValue(cJSON_GetObjectItem(json.get(), key.c_str()));
            return std::string(value == nullptr ? "" : value);
        };
        received +=
            (received.empty() ? "" : ", ") + member(ISOMERISM_EVENT) + " of " + GetAnonyString(member(DEV_ID_KEY));
    }

    std::string received;
};

class Sink {
public:
    Sink(int socket, const StreamDescription &description, const PairOptions &options, int output)
        : description_(description), options_(options), output_(output), receiver_(socket)
    {
        if (options_.isDumped) {
            SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), "a");
        }
        OstraDump::GetInstance().Init();  // even without --dump, the environment may set the parameter
    }

    // Returns false, with the reason in the report, if not everything arrived.
    bool ReceiveStream()
    {
        while (end_.empty()) {
            ReceivedFrame frame;
            const ReceiveResult result = receiver_.Receive(frame);
            if (result == ReceiveResult::CLOSED || result == ReceiveResult::FAILED) {
                return FailWithoutEnd(result == ReceiveResult::CLOSED ? 0 : errno);
            }
            if (result == ReceiveResult::FRAME && !Handle(frame)) {
                return false;
            }
        }
        if (output_ >= 0 && close(output_) != 0) {
            return Fail(options_.outputPath + ": " + std::strerror(errno));
        }
        CheckDescription();
        CompareWithEnd();
        if (!report_.failure.empty() && receiver_.Status().firstMissing) {
            Fail("the first missing frame is frame " + std::to_string(*receiver_.Status().firstMissing));
        }
        return report_.failure.empty();
    }

    SideReport Report(const BusinessFlow &flow, const std::string &notified)
    {
        const std::string lost = end_.empty() ? "unknown: the end of the stream is missing" : LostChunks();
        report_.summary = "sink\n" + TotalRows(received_, start_) + Row("lost", lost) +
                          Row("detected", ToString(receiver_.Status().detected)) + Row("device", device_) +
                          Row("service", service_) + Row("settings", settings_) + Row("notified", notified) +
                          flow.Rows(options_.isVerbose);
        if (options_.isDumped && report_.failure.empty()) {
            report_.summary += Row("dump", dumpPath_ + "; delete it with: rm " + dumpPath_);
        }
        report_.result = end_.empty() ? "" : Result();
        return report_;
    }

private:
    bool Handle(const ReceivedFrame &frame)
    {
        const ByteView content = frame.content;
        switch (frame.kind) {
            case FrameKind::STREAM:
                received_.Add(frame.number, content);
                return HandleChunk(content);
            case FrameKind::DEVICE:
                if (AsString(content) == description_.device) {
                    device_ = GetAnonyString(description_.connection.sourceNetworkId) + " " + DEVICE_NAME;
                }
                return true;
            case FrameKind::SERVICE:
                service_ = AsString(content) == description_.service ? DescribeService(description_.service) : MISSING;
                return true;
            case FrameKind::SETTINGS:
                if (const ParcelMap map = ReadMap(content); map == description_.settings) {
                    settings_ = map.at(1) + " Hz, " + map.at(2) + " channels, chunks of " + map.at(3) + " ms";
                }
                return true;
            case FrameKind::END:
                for (const auto &[key, value] : ReadMap(content)) {
                    end_.push_back(std::strtoull(value.c_str(), nullptr, 10));
                }
                return end_.size() == FIRST_FAULT_COUNT + FAULT_KINDS || Fail("the end frame is not valid");
            case FrameKind::KEEP_ALIVE:
                return true;
        }
        return true;
    }

    bool HandleChunk(ByteView chunk)
    {
        if (output_ >= 0 && !WriteAll(output_, chunk)) {
            return Fail(options_.outputPath + ": " + std::strerror(errno));
        }
        DumpStreamData(dumpName_.c_str(), chunk.data, static_cast<int>(chunk.size));
        return !options_.isDumped || CheckDump(chunk);
    }

    // Checks the size of the dump, since the library only logs failures.
    bool CheckDump(ByteView chunk)
    {
        struct stat status {};
        if (lstat(dumpPath_.c_str(), &status) == 0 && static_cast<uint64_t>(status.st_size) == received_.bytes) {
            return true;
        }
        // Write again to get the error. Other users can create files in the directory: do not follow their symbolic
        // links, and do not wait for the reader of a FIFO.
        constexpr int flags = O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
        const int fd = open(dumpPath_.c_str(), flags, 0600);
        const bool isWritten = fd >= 0 && WriteAll(fd, chunk);
        return Fail(dumpPath_ +
                    ": the dump is incomplete: " + (isWritten ? "not all was written" : std::strerror(errno)));
    }

    std::string LostChunks() const
    {
        const uint64_t sent = end_[SENT_CHUNKS];
        return std::to_string(sent - received_.chunks) + " of " + std::to_string(sent) + " chunks";
    }

    void CheckDescription()
    {
        for (const auto &[value, name] : {std::pair(device_, "the device document is"),
                                          {service_, "the service document is"},
                                          {settings_, "the settings are"}}) {
            if (value == MISSING) {
                Fail(std::string(name) + " missing or not as expected");
            }
        }
    }

    // Compares what arrived with what the end of the stream announces.
    void CompareWithEnd()
    {
        FaultCounts injected{};
        std::copy_n(end_.begin() + FIRST_FAULT_COUNT, FAULT_KINDS, injected.begin());
        const std::string detected = "faults detected: " + ToString(receiver_.Status().detected);
        const uint64_t intact = end_[INTACT_CHUNKS];
        if (received_.chunks < intact) {
            Fail(std::to_string(intact - received_.chunks) + " of " + std::to_string(intact) + " chunks missing; " +
                 detected);
        } else if (receiver_.Status().detected != injected) {
            Fail(detected + "; faults injected: " + ToString(injected));
        } else if (received_.chunks != intact || received_.bytes != end_[INTACT_BYTES] ||
                   received_.digest != end_[INTACT_DIGEST]) {
            Fail("the stream received differs from the stream sent");
        }
    }

    std::string Result() const
    {
        const uint64_t faults = Sum(receiver_.Status().detected);
        if (faults == 0) {
            return received_.chunks == 0 ? "nothing was sent: the input is empty" : "every byte arrived";
        }
        const std::string count = std::to_string(faults);
        return "faults injected: " + count + ", detected: " + count + ". The sink drops every frame with a fault:\n  " +
               LostChunks() + " lost (corrupted, truncated, delayed, emptied or oversized); the other faults\n  " +
               "only added frames. Every other chunk arrived";
    }

    bool FailWithoutEnd(int error)
    {
        const std::string expected = ", expected frame " + std::to_string(receiver_.Status().nextFrame);
        if (error == 0 || error == EAGAIN) {
            const std::string silence = "the source sent nothing for " + FormatSeconds(options_.timeout);
            report_.consequence = (error == 0 ? "the end of the stream is missing" : silence) + expected;
            return false;
        }
        return Fail(std::string("receiving failed: ") + std::strerror(error) + expected);
    }

    bool Fail(const std::string &reason)
    {
        report_.failure += (report_.failure.empty() ? "" : "; ") + reason;
        return false;
    }

    const StreamDescription &description_;
    const PairOptions &options_;
    int output_;
    FrameReceiver receiver_;
    // Random, so that other users cannot create the file first. OstraDump rejects longer names.
    const std::string dumpName_ = "channel_pair_" + GetRandomID().substr(16) + ".pcm";
    const std::string dumpPath_ = DUMP_PATH_PREFIX + dumpName_;
    std::string device_ = MISSING;
    std::string service_ = MISSING;
    std::string settings_ = MISSING;
    Totals received_;
    std::vector<uint64_t> end_;  // by EndKey; empty before the end of the stream
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    SideReport report_;
};

}  // namespace

SideReport RunSink(int socket, const StreamDescription &description, const PairOptions &options, int output)
{
    std::signal(SIGINT, SIG_IGN);  // the source ends the stream
    std::signal(SIGTERM, SIG_IGN);
    constexpr auto topic = static_cast<DHTopic>(8);
    const OHOS::sptr<Notifications> notifications = new Notifications();
    OstraContext &context = OstraContext::GetInstance();
    context.GetDHFwkKit()->RegisterPublisherListener(topic, notifications);
    context.AddWaitNotify(description.connection.sourceNetworkId, ISOMERISM_CONNECT);
    context.PublishMessage();

    BusinessFlow flow("sink");
    flow.ReportStart(true);
    Sink sink(socket, description, options, output);
    const bool isReceived = sink.ReceiveStream();
    flow.ReportEnd(isReceived);

    context.AddWaitNotify(description.connection.sourceNetworkId, ISOMERISM_DISCONNECT);
    context.PublishMessage();
    context.GetDHFwkKit()->UnregisterPublisherListener(topic, notifications);
    return sink.Report(flow, notifications->received);
}
