// SPDX-License-Identifier: Apache-2.0
//
// The example pair: starts a source and a sink process, joined by a socket pair, lets the source send a stream in
// channel frames, and tells whether all of it arrived. `channel_pair --help` tells the rest.

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "dh_utils_tools.h"
#include "pair.h"

namespace Adapter = OHOS::DistributedHardware::OstraAdapter;

namespace {

int Complain(const std::string &what, int status)
{
    std::fprintf(stderr, "channel_pair: %s\n", what.c_str());
    return status;
}

int ComplainOf(const std::string &path)
{
    return Complain(path + ": " + std::strerror(errno), EXIT_FAILURE);
}

bool Print(const std::string &text)
{
    return std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
}

// Opens the file that the sink writes, empty; a file that is the input as well stays as it is. Returns false with the
// reason in errno.
bool OpenOutput(const std::string &path, int input, UniqueFd &output)
{
    output = UniqueFd(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY, 0666));
    struct stat source {};
    struct stat target {};
    if (!output.IsOpen() || fstat(output.Get(), &target) != 0) {
        return false;
    }
    if (!S_ISREG(target.st_mode)) {
        return true;
    }
    if (input >= 0 && fstat(input, &source) == 0 && source.st_dev == target.st_dev && source.st_ino == target.st_ino) {
        errno = EEXIST;
        return false;
    }
    return ftruncate(output.Get(), 0) == 0;
}

Adapter::DHConnectInfo DescribeConnection()
{
    Adapter::DHConnectInfo connection;
    Adapter::GetLocalDeviceNetworkId(connection.sourceNetworkId);
    connection.sinkNetworkId = Adapter::GetRandomID() + Adapter::GetRandomID();
    connection.sourceIp = "127.0.0.1";
    connection.sinkIp = "127.0.0.2";
    connection.sinkBrMac = "00:00:5E:00:53:01";
    connection.port = 8080;
    return connection;
}

// Both ends of the link. Neither waits for ever for the other.
bool MakeLink(double timeout, UniqueFd &sourceEnd, UniqueFd &sinkEnd)
{
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return false;
    }
    sourceEnd = UniqueFd(ends[0]);
    sinkEnd = UniqueFd(ends[1]);
    timeval limit{};
    limit.tv_sec = static_cast<time_t>(timeout);
    limit.tv_usec = static_cast<suseconds_t>(std::lround((timeout - std::floor(timeout)) * 1e6)) % 1'000'000;
    return setsockopt(ends[0], SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit)) == 0 &&
           setsockopt(ends[1], SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit)) == 0;
}

// Prints what both sides report, and what went wrong once: not what the other side's failure brought about.
int Conclude(const SideProcess &source, const SideProcess &sink)
{
    const bool hasFate = !source.Fate().empty() || !sink.Fate().empty();
    const auto failedAlone = [](const SideReport &report) {
        return !report.failure.empty() && !report.isCaused;
    };
    const bool hasCause = failedAlone(source.Report()) || failedAlone(sink.Report());
    const bool isInterrupted = source.Report().isInterrupted;
    bool hasFailed = hasFate;
    std::string verdict = sink.Report().verdict;
    if (!Print(source.Report().summary + sink.Report().summary)) {
        return ComplainOf("standard output");
    }
    for (const SideProcess *side : {&source, &sink}) {
        if (!side->Fate().empty()) {
            Complain(side->Fate(), EXIT_FAILURE);
        }
    }
    for (const SideProcess *side : {&source, &sink}) {
        const SideReport &report = side->Report();
        hasFailed = hasFailed || !report.failure.empty();
        if (!report.failure.empty() && (!report.isCaused || !hasCause)) {
            Complain(report.failure, EXIT_FAILURE);
        }
    }
    if (hasFailed) {
        return EXIT_FAILURE;
    }
    if (!Print("result\n  " + std::string(isInterrupted ? "interrupted; of what was sent so far, " : "") + verdict +
               "\n")) {
        return ComplainOf("standard output");
    }
    return isInterrupted ? EXIT_INTERRUPTED : EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char **argv)
{
    PairOptions options;
    if (const auto status = ReadOptions(argc, argv, options)) {
        return std::fflush(stdout) == 0 ? *status : ComplainOf("standard output");
    }
    setenv("OSTRA_HOST_LOG_LEVEL", "error", 0);  // the library tells each CRC at info level
    std::signal(SIGPIPE, SIG_IGN);               // a write to what takes no more fails, and is told
    std::signal(SIGXFSZ, SIG_IGN);
    BlockSideSignals();
    StreamInput input;
    if (!input.Open(options)) {
        return ComplainOf(input.Name());
    }
    if (input.Length().pieces && options.faults.count > MostFaults(*input.Length().pieces)) {
        return Complain(
            "--faults: at most " + std::to_string(MostFaults(*input.Length().pieces)) + " fit into " + input.Name(),
            EXIT_USAGE);
    }
    UniqueFd output;
    if (!options.outputPath.empty() && !OpenOutput(options.outputPath, input.Descriptor(), output)) {
        return ComplainOf(options.outputPath);
    }
    if (!Print("sending " + input.Name() + "\n")) {
        return ComplainOf("standard output");
    }

    UniqueFd sourceEnd;
    UniqueFd sinkEnd;
    if (!MakeLink(options.timeout, sourceEnd, sinkEnd)) {
        return ComplainOf("socket pair");
    }
    const Adapter::DHConnectInfo connection = DescribeConnection();
    const Offer offer = MakeOffer(connection);
    SideProcess source("source", [&] {
        sinkEnd.Close();
        return RunSource({sourceEnd.Get(), connection, offer}, options, input);
    });
    sourceEnd.Close();
    SideProcess sink("sink", [&] { return RunSink({sinkEnd.Get(), connection, offer}, options, std::move(output)); });
    sinkEnd.Close();
    WaitForBoth(source, sink, options.timeout);
    return Conclude(source, sink);
}
