// SPDX-License-Identifier: Apache-2.0

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "fault_injector.h"
#include "input.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_qos_adapter.h"
#include "pair.h"
#include "process.h"
#include "qos.h"
#include "report.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

ByteView AsBytes(const std::string &document)
{
    return {reinterpret_cast<uint8_t *>(const_cast<char *>(document.data())), document.size()};
}

class Source {
public:
    Source(int socket, const StreamDescription &description, const PairOptions &options, Input &input, int trace)
        : socket_(socket),
          description_(description),
          options_(options),
          input_(input),
          trace_(trace < 0 ? nullptr : fdopen(trace, "w"), std::fclose),
          injector_(options.faults, input.Length())
    {
    }

    bool SendDescription()
    {
        return Send(FrameKind::DEVICE, AsBytes(description_.device)) &&
               Send(FrameKind::SERVICE, AsBytes(description_.service)) &&
               SendMap(FrameKind::SETTINGS, description_.settings);
    }

    bool SendStream()
    {
        const int idleMs = static_cast<int>(std::min(1.0, options_.timeout / 4) * 1000);
        while (InterruptCount() == 0) {
            ByteView chunk;
            const Input::Result result = input_.Next(chunk, idleMs);
            if (result == Input::Result::END) {
                return true;
            }
            if (result == Input::Result::FAILED) {
                return Fail(input_.Name() + ": " + std::strerror(errno));
            }
            if (!Send(result == Input::Result::IDLE ? FrameKind::KEEP_ALIVE : FrameKind::STREAM, chunk)) {
                return false;
            }
        }
        report_.result = "interrupted; of the part that was sent, ";
        return true;
    }

    bool SendEnd()
    {
        if (injector_.IsDelaying() && !Send(FrameKind::KEEP_ALIVE, {})) {
            return false;
        }
        ParcelMap end = {{SENT_CHUNKS, std::to_string(sent_.chunks)},
                         {INTACT_CHUNKS, std::to_string(sent_.chunks - dropped_.chunks)},
                         {INTACT_BYTES, std::to_string(sent_.bytes - dropped_.bytes)},
                         {INTACT_DIGEST, std::to_string(sent_.digest - dropped_.digest)}};
        for (uint32_t fault = 0; fault < FAULT_KINDS; ++fault) {
            end[static_cast<int32_t>(FIRST_FAULT_COUNT + fault)] = std::to_string(injector_.InjectedCounts()[fault]);
        }
        if (!SendMap(FrameKind::END, end)) {
            return false;
        }
        if (injector_.Remaining() > 0 && report_.result.empty()) {
            return Fail("the stream has only " + std::to_string(nextFrame_) +
                        " frames; faults not injected: " + std::to_string(injector_.Remaining()));
        }
        if (!options_.tracePath.empty() && (trace_ == nullptr || std::fflush(trace_.get()) != 0)) {
            return Fail(options_.tracePath + ": " + std::strerror(errno));
        }
        return true;
    }

    SideReport Report(const BusinessFlow &flow, const std::string &qos)
    {
        report_.summary = "source\n" + TotalRows(sent_, start_);
        if (options_.faults.count > 0) {
            report_.summary += Row("injected", ToString(injector_.InjectedCounts()));
        }
        report_.summary += Row("QoS", qos) + flow.Rows(options_.isVerbose);
        if (options_.isVerbose) {
            report_.summary += Row("connection", description_.connection.String());
        }
        return report_;
    }

private:
    bool SendMap(FrameKind kind, const ParcelMap &map)
    {
        OHOS::MessageParcel parcel;
        if (!IpcUtils::Marshalling(parcel, map)) {
            return Fail("a parcel cannot be written");
        }
        auto *data = reinterpret_cast<uint8_t *>(parcel.GetData());  // NOLINT(performance-no-int-to-ptr)
        return Send(kind, {data, parcel.GetDataSize()});
    }

    bool Send(FrameKind kind, ByteView content)
    {
        const uint64_t number = nextFrame_++;
        Message message = PackMessage(kind, number, content);
        if (message.empty()) {
            return FailToSend(number);
        }
        const FaultInjector::Output output = injector_.Inject(kind, number, std::move(message));
        for (const Message &injected : output.messages) {
            Trace(injected);
            if (!SendMessage(socket_, injected)) {
                return FailToSend(number);
            }
        }
        if (kind == FrameKind::STREAM) {
            sent_.Add(number, content);
        }
        if (output.isDropped) {
            dropped_.Add(number, content);
        }
        return true;
    }

    void Trace(const Message &message) const
    {
        if (trace_ == nullptr) {
            return;
        }
        for (const uint8_t byte : message) {
            std::fprintf(trace_.get(), "%02X ", byte);
        }
        std::fputc('\n', trace_.get());
    }

    bool FailToSend(uint64_t number)
    {
        const int error = errno;
        const std::string frame = " at frame " + std::to_string(number);
        if (error == EAGAIN || error == EPIPE || error == ECONNRESET) {
            const std::string silence = "the sink received nothing for " + FormatSeconds(options_.timeout);
            report_.consequence = (error == EAGAIN ? silence : "the sink closed the connection") + frame;
            return false;
        }
        return Fail("sending failed" + frame + ": " + std::strerror(error));
    }

    bool Fail(const std::string &reason)
    {
        report_.failure = reason;
        return false;
    }

    int socket_;
    const StreamDescription &description_;
    const PairOptions &options_;
    Input &input_;
    std::unique_ptr<std::FILE, int (*)(std::FILE *)> trace_;
    FaultInjector injector_;
    uint64_t nextFrame_ = 0;
    Totals sent_;
    Totals dropped_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    SideReport report_;
};

}  // namespace

SideReport RunSource(int socket, const StreamDescription &description, const PairOptions &options, Input &input,
                     int trace)
{
    BusinessFlow flow("source");
    Source source(socket, description, options, input, trace);
    const bool isDescribed = source.SendDescription();
    flow.ReportStart(isDescribed);

    constexpr auto level = static_cast<int32_t>(OHOS::QOS::QosLevel::QOS_USER_INTERACTIVE);
    const auto thread = static_cast<int32_t>(syscall(SYS_gettid));
    RequestAuth(std::to_string(getpid()).c_str());
    const bool isGranted = SetQos(level, thread) == 0;
    const bool isSent = isDescribed && source.SendStream() && source.SendEnd();
    const bool isReset = isGranted && ResetQos(thread) == 0;

    flow.ReportEnd(isSent);
    return source.Report(flow, "level " + std::to_string(level) +
                                   (isReset     ? " granted, reset at the end"
                                    : isGranted ? " granted, not reset"
                                                : " rejected: requires privileges"));
}
