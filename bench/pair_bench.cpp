// SPDX-License-Identifier: Apache-2.0
//
// The transport of the example pair compared with a bare socket: one process sends chunks of a stream as fast as it
// can, another one receives them, each on a processor of its own if there are two. Measures the CPU time of both
// processes, or the wall-clock time.

#include <benchmark/benchmark.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "../examples/channel_pair/transport.h"
#include "ratio_table.h"

namespace {

constexpr int CHUNKS = 10000;
constexpr size_t CHUNK_BYTES = 3840;  // 20 ms of audio
constexpr size_t HEADER_BYTES = 4;    // of a frame late in its stream

double WallClockSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double CpuSeconds()
{
    double seconds = 0;
    for (const auto who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        for (const timeval &time : {usage.ru_utime, usage.ru_stime}) {
            seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
        }
    }
    return seconds;
}

// Two processors that this process may use; twice the same if there is only one.
std::array<size_t, 2> TwoProcessors()
{
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof(allowed), &allowed);
    std::vector<size_t> processors;
    for (size_t i = 0; i < CPU_SETSIZE; ++i) {
        if (CPU_ISSET(i, &allowed)) {
            processors.push_back(i);
        }
    }
    return {processors.front(), processors.back()};
}

void PinTo(size_t processor)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(processor, &set);
    sched_setaffinity(0, sizeof(set), &set);
}

using Send = std::function<bool()>;
using Receive = std::function<bool()>;

using Seconds = double (*)();

// Measures CHUNKS calls of the two functions, in two processes at the ends of a connection.
void MeasureConnection(benchmark::State &state, Seconds seconds, const std::function<Send(int)> &makeSend,
                       const std::function<Receive(int)> &makeReceive)
{
    cpu_set_t before;
    sched_getaffinity(0, sizeof(before), &before);
    const auto [here, there] = TwoProcessors();
    for (auto _ : state) {
        std::array<int, 2> ends{};
        const double start = seconds();
        if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
            state.SkipWithError("no socket pair");
            break;
        }
        const auto [receivingEnd, sendingEnd] = ends;
        const pid_t sender = fork();
        if (sender == 0) {
            PinTo(there);
            close(receivingEnd);
            const Send send = makeSend(sendingEnd);
            int sent = 0;
            while (sent < CHUNKS && send()) {
                ++sent;
            }
            _exit(0);
        }
        PinTo(here);
        close(sendingEnd);
        const Receive receive = makeReceive(receivingEnd);
        int received = 0;
        while (received < CHUNKS && receive()) {
            ++received;
        }
        close(receivingEnd);
        waitpid(sender, nullptr, 0);
        state.SetIterationTime(seconds() - start);
        if (received < CHUNKS) {
            state.SkipWithError("a chunk did not arrive");
            break;
        }
    }
    sched_setaffinity(0, sizeof(before), &before);
}

std::vector<uint8_t> &Chunk()
{
    static std::vector<uint8_t> chunk(CHUNK_BYTES, 1);
    return chunk;
}

void MeasurePair(benchmark::State &state, Seconds seconds, bool isDigested)
{
    MeasureConnection(
        state, seconds,
        [isDigested](int socket) {
            return [socket, isDigested, number = uint64_t{0}, totals = Totals()]() mutable {
                const ByteView chunk{Chunk().data(), Chunk().size()};
                if (isDigested) {
                    totals.Add(number, chunk);
                }
                return SendMessage(socket, PackMessage(FrameKind::STREAM, number++, chunk));
            };
        },
        [isDigested](int socket) {
            auto receiver = std::make_shared<FrameReceiver>(socket);
            return [isDigested, receiver, totals = Totals()]() mutable {
                ReceivedFrame frame;
                const bool isReceived = receiver->Receive(frame) == ReceiveResult::FRAME;
                if (isReceived && isDigested) {
                    totals.Add(frame.number, frame.content);
                }
                return isReceived && frame.content.size == CHUNK_BYTES;
            };
        });
}

// The same messages without the library, with the same digests.
void MeasureBareSocket(benchmark::State &state, Seconds seconds, bool isDigested)
{
    MeasureConnection(
        state, seconds,
        [isDigested](int socket) {
            return [socket, isDigested, totals = Totals()]() mutable {
                static std::vector<uint8_t> head(PREFIX_BYTES + HEADER_BYTES, 1);
                std::array<iovec, 2> parts = {{{head.data(), head.size()}, {Chunk().data(), Chunk().size()}}};
                msghdr message{};
                message.msg_iov = parts.data();
                message.msg_iovlen = parts.size();
                if (isDigested) {
                    totals.Add(0, {Chunk().data(), Chunk().size()});
                }
                return sendmsg(socket, &message, MSG_NOSIGNAL) > 0;
            };
        },
        [isDigested](int socket) {
            return [socket, isDigested, totals = Totals(), message = Message(MAX_MESSAGE_BYTES)]() mutable {
                const ssize_t size = recv(socket, message.data(), message.size(), MSG_TRUNC);
                if (isDigested) {
                    totals.Add(0, {message.data(), CHUNK_BYTES});
                }
                return size > 0;
            };
        });
}

int AddPairRow(const char *name, Seconds seconds, bool isDigested, const char *baselineName)
{
    return AddRow(
        name, [=](benchmark::State &state) { MeasurePair(state, seconds, isDigested); }, baselineName,
        [=](benchmark::State &state) { MeasureBareSocket(state, seconds, isDigested); }, SAME_WORK, TimeSource::MANUAL);
}

const int CPU_ROW = AddPairRow("example pair, 10 000 pieces of 3840 B, CPU time of both sides", CpuSeconds, false,
                               "`sendmsg` and `recv` of the same pieces");
const int CLOCK_ROW = AddPairRow("example pair, 10 000 pieces of 3840 B, wall-clock time", WallClockSeconds, false,
                                 "`sendmsg` and `recv` of the same pieces");
const int DIGEST_ROW = AddPairRow("example pair, with a digest of the stream, CPU time of both sides", CpuSeconds, true,
                                  "`sendmsg` and `recv` of the same pieces, and the digests");

}  // namespace
