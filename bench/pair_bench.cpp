// SPDX-License-Identifier: Apache-2.0
//
// The road of the example pair beside a bare socket: one process sends pieces of sound as fast as it can, another one
// takes them, each on a processor of its own where there are two. What is measured is the processor's time of both, or
// what the clock shows.

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
#include "../examples/channel_pair/unique_fd.h"
#include "ratio_table.h"

namespace {

constexpr int PIECES = 10000;
constexpr size_t PIECE_BYTES = 3840;  // 20 ms of sound
constexpr size_t HEADER_BYTES = 4;    // of a frame far into its stream

double ClockSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double ProcessorSeconds()
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

// Two processors that this process may use; one and the same where there is one only.
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

void StayOn(size_t processor)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(processor, &set);
    sched_setaffinity(0, sizeof(set), &set);
}

using Send = std::function<bool()>;
using Receive = std::function<bool()>;

using Seconds = double (*)();

// Measures PIECES calls of what `makeSend` and `makeReceive` make of the two ends of a link, in two processes.
void MeasureLink(benchmark::State &state, Seconds seconds, const std::function<Send(int)> &makeSend,
                 const std::function<Receive(int)> &makeReceive)
{
    cpu_set_t before;
    sched_getaffinity(0, sizeof(before), &before);
    const auto [here, there] = TwoProcessors();
    for (auto _ : state) {
        std::array<int, 2> ends{};
        const double start = seconds();
        if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
            state.SkipWithError("there is no link");
            break;
        }
        UniqueFd receivingEnd(ends[0]);
        UniqueFd sendingEnd(ends[1]);
        const pid_t sender = fork();
        if (sender == 0) {
            StayOn(there);
            receivingEnd.Close();
            const Send send = makeSend(sendingEnd.Get());
            int sent = 0;
            while (sent < PIECES && send()) {
                ++sent;
            }
            _exit(0);
        }
        StayOn(here);
        sendingEnd.Close();
        const Receive receive = makeReceive(receivingEnd.Get());
        int received = 0;
        while (received < PIECES && receive()) {
            ++received;
        }
        receivingEnd.Close();
        waitpid(sender, nullptr, 0);
        state.SetIterationTime(seconds() - start);
        if (received < PIECES) {
            state.SkipWithError("a piece did not arrive");
            break;
        }
    }
    sched_setaffinity(0, sizeof(before), &before);
}

std::vector<uint8_t> &Piece()
{
    static std::vector<uint8_t> piece(PIECE_BYTES, 1);
    return piece;
}

void MeasurePair(benchmark::State &state, Seconds seconds, bool isDigested)
{
    MeasureLink(
        state, seconds,
        [isDigested](int link) {
            static SocketRoad road(link);
            static FrameSender sender(road, isDigested);
            return [] {
                return sender.Send(FrameKind::STREAM, {Piece().data(), Piece().size()});
            };
        },
        [isDigested](int link) {
            auto receiver = std::make_shared<FrameReceiver>(link, isDigested);
            return [receiver] {
                ReceivedFrame frame;
                return receiver->Receive(frame) == ReceiveResult::FRAME && frame.content.size == PIECE_BYTES;
            };
        });
}

// The same messages by hand, with the same digests.
void MeasureBareSocket(benchmark::State &state, Seconds seconds, bool isDigested)
{
    MeasureLink(
        state, seconds,
        [isDigested](int link) {
            return [link, isDigested, totals = LinkTotals()]() mutable {
                static std::vector<uint8_t> head(PREFIX_BYTES + HEADER_BYTES, 1);
                std::array<iovec, 2> parts = {{{head.data(), head.size()}, {Piece().data(), Piece().size()}}};
                msghdr message{};
                message.msg_iov = parts.data();
                message.msg_iovlen = parts.size();
                totals.Add(0, {Piece().data(), Piece().size()}, isDigested);
                return sendmsg(link, &message, MSG_NOSIGNAL) > 0;
            };
        },
        [isDigested](int link) {
            return
                [link, isDigested, totals = LinkTotals(), message = std::vector<uint8_t>(MAX_MESSAGE_BYTES)]() mutable {
                    const ssize_t size = recv(link, message.data(), message.size(), MSG_TRUNC);
                    totals.Add(0, {message.data(), PIECE_BYTES}, isDigested);
                    return size > 0;
                };
        });
}

struct Comparison {
    std::string name;
    Seconds seconds;
    bool isDigested;
    const char *what;
    const char *against;
};

const int ROWS = [] {
    const Comparison comparisons[] = {
        {"ByProcessor", ProcessorSeconds, false,
         "the example pair, 10 000 pieces of 3840 B, processor's time of both sides",
         "`sendmsg` and `recv` of the same pieces"},
        {"ByClock", ClockSeconds, false, "the same by the clock", "the same"},
        {"WithDigest", ProcessorSeconds, true, "the same with a digest of the stream, processor's time",
         "`sendmsg` and `recv` of the same pieces, and the digests"},
    };
    int rows = 0;
    for (const auto &[name, seconds, isDigested, what, against] : comparisons) {
        const std::string pair = "Pair" + name;
        const std::string bare = "BareSocket" + name;
        benchmark::RegisterBenchmark(pair.c_str(), MeasurePair, seconds, isDigested)->UseManualTime();
        benchmark::RegisterBenchmark(bare.c_str(), MeasureBareSocket, seconds, isDigested)->UseManualTime();
        rows += AddRow({what, pair, against, bare, 1 / 0.75});
    }
    return rows;
}();

}  // namespace
