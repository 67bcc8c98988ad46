// SPDX-License-Identifier: Apache-2.0
//
// The transport of the example pair compared with a bare socket: one process sends the chunks of a stream as fast as it
// can, another one receives them, each pinned to its own processor if there are two. Measures the CPU time of both
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
#include <vector>

#include "../examples/channel_pair/transport.h"
#include "ratio_table.h"

namespace {

constexpr uint64_t CHUNKS = 10000;
constexpr size_t CHUNK_BYTES = 3840;  // 20 ms of audio
constexpr size_t HEADER_BYTES = 4;    // the maximum, for large sequence numbers

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

// Returns two processors that this process may use; the same one twice if there is only one.
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

ByteView Chunk()
{
    static std::vector<uint8_t> chunk(CHUNK_BYTES, 1);
    return {chunk.data(), chunk.size()};
}

// One end of a connection that uses the library.
class FrameEnd {
public:
    explicit FrameEnd(int socket) : socket_(socket), receiver_(socket)
    {
    }

    bool Send(uint64_t number)
    {
        return SendMessage(socket_, PackMessage(FrameKind::STREAM, number, Chunk()));
    }

    ByteView Receive()
    {
        ReceivedFrame frame;
        return receiver_.Receive(frame) == ReceiveResult::FRAME ? frame.content : ByteView();
    }

private:
    int socket_;
    FrameReceiver receiver_;
};

// One end of a connection that transfers messages of the same size without the library.
class BareEnd {
public:
    explicit BareEnd(int socket) : socket_(socket), message_(MAX_MESSAGE_BYTES)
    {
    }

    bool Send(uint64_t /* number */)
    {
        const ByteView chunk = Chunk();
        std::array<iovec, 2> parts = {{{message_.data(), PREFIX_BYTES + HEADER_BYTES}, {chunk.data, chunk.size}}};
        msghdr message{};
        message.msg_iov = parts.data();
        message.msg_iovlen = parts.size();
        return sendmsg(socket_, &message, MSG_NOSIGNAL) > 0;
    }

    ByteView Receive()
    {
        const ssize_t size = recv(socket_, message_.data(), message_.size(), MSG_TRUNC);
        return size > 0 ? ByteView{message_.data(), CHUNK_BYTES} : ByteView();
    }

private:
    int socket_;
    Message message_;
};

using Seconds = double (*)();

// Measures the transfer of CHUNKS chunks from one process to another. With `isDigested`, both compute a digest.
template <typename End>
void MeasureConnection(benchmark::State &state, Seconds seconds, bool isDigested)
{
    cpu_set_t before;
    sched_getaffinity(0, sizeof(before), &before);
    const auto [receiverCpu, senderCpu] = TwoProcessors();
    for (auto _ : state) {
        std::array<int, 2> sockets{};
        const double start = seconds();
        if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
            state.SkipWithError("cannot create a socket pair");
            break;
        }
        const pid_t child = fork();
        PinTo(child == 0 ? senderCpu : receiverCpu);
        close(sockets[child == 0 ? 0 : 1]);
        End end(sockets[child == 0 ? 1 : 0]);
        Totals totals;
        if (child == 0) {
            for (uint64_t sent = 0; sent < CHUNKS && end.Send(sent); ++sent) {
                if (isDigested) {
                    totals.Add(sent, Chunk());
                }
            }
            _exit(0);
        }
        uint64_t received = 0;
        for (ByteView chunk; received < CHUNKS && (chunk = end.Receive()).size == CHUNK_BYTES; ++received) {
            if (isDigested) {
                totals.Add(received, chunk);
            }
        }
        close(sockets[0]);
        waitpid(child, nullptr, 0);
        state.SetIterationTime(seconds() - start);
        if (received < CHUNKS) {
            state.SkipWithError("a chunk did not arrive");
            break;
        }
    }
    sched_setaffinity(0, sizeof(before), &before);
}

int AddPairRow(const char *name, Seconds seconds, bool isDigested, const char *baselineName)
{
    return AddRow(
        name, [=](benchmark::State &state) { MeasureConnection<FrameEnd>(state, seconds, isDigested); }, baselineName,
        [=](benchmark::State &state) { MeasureConnection<BareEnd>(state, seconds, isDigested); }, SAME_WORK_LIMIT,
        TimeSource::MANUAL);
}

const int CPU_ROW = AddPairRow("example pair, 10 000 chunks of 3840 B, CPU time of both sides", CpuSeconds, false,
                               "`sendmsg` and `recv` of the same chunks");
const int CLOCK_ROW = AddPairRow("example pair, 10 000 chunks of 3840 B, wall-clock time", WallClockSeconds, false,
                                 "`sendmsg` and `recv` of the same chunks");
const int DIGEST_ROW = AddPairRow("example pair, with a digest of the stream, CPU time of both sides", CpuSeconds, true,
                                  "`sendmsg` and `recv` of the same chunks, and the digests");

}  // namespace
