// SPDX-License-Identifier: Apache-2.0
//
// The example pair: forks a source and a sink, connected by a socket pair, and reports whether the stream arrived.

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "dh_device_json.h"
#include "fault_injector.h"
#include "input.h"
#include "ostra_constants.h"
#include "ostra_device_service.h"
#include "process.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

constexpr int EXIT_USAGE = 2;
constexpr int EXIT_INTERRUPTED = 130;

// scripts/demo reads the help and the names of the options from here, so that it can print and check them before the
// first build.
constexpr char USAGE[] = R"(Usage: channel_pair [OPTION]... [FILE]

Sends a stream from a source process to a sink process in channel frames of 20 ms and checks that every byte arrives,
and nothing else. The stream is FILE, standard input (-), or 5 s of a generated tone (48 kHz, 16 bits, stereo), and is
sent as fast as possible. Frames 0 to 2 are the source's device document, its service document and the stream's
settings; frame 3 is the first chunk of the stream.

  -o, --output FILE  write the received stream to FILE; - is standard output
      --seconds T    send the tone, not a FILE, for T seconds, which is much more than T seconds of sound
      --faults N     inject N faults, at most one per two chunks, at random positions; each must be detected, and all
                     other chunks must arrive
      --seed S       random seed of --faults; 1 by default
      --flip N       corrupt frame N, counted from 0; not with --faults. The pair must fail and name the frame
      --timeout T    wait at most T seconds for a side that does not respond; 10 by default
      --trace FILE   write the messages of the source to FILE in hexadecimal, one per line; - is standard output
      --dump         dump the stream that the sink receives to /data/local/tmp/
  -v, --verbose      print every event and the connection
  -h, --help         print this help and exit

Exit status: 0 success, 1 failure, 2 invalid arguments, 130 interrupted.
)";

int PrintError(const std::string &message, int status = EXIT_FAILURE)
{
    std::fprintf(stderr, "channel_pair: %s\n", message.c_str());
    return status;
}

// Returns the exit status if the program must exit immediately.
std::optional<int> ParseOptions(int argc, char **argv, PairOptions &options)
{
    constexpr double minTime = 0.1;
    constexpr double weekInSeconds = 7 * 24 * 3600;
    constexpr double hourInSeconds = 3600;
    constexpr uint64_t maxFaults = 1000000;
    const CLI::Range anyNumber(uint64_t{0}, uint64_t{std::numeric_limits<int64_t>::max()});
    const CLI::Validator isNamed([](const std::string &path) { return path.empty() ? "the name is empty" : ""; }, "");
    CLI::App app;
    app.formatter_fn([](const CLI::App *, const std::string &, CLI::AppFormatMode) { return USAGE; });
    auto *const file = app.add_option("FILE", options.inputPath)->check(isNamed);
    app.add_option("-o,--output", options.outputPath)->check(isNamed);
    app.add_option("--trace", options.tracePath)->check(isNamed);
    app.add_option("--seconds", options.seconds)->check(CLI::Range(minTime, weekInSeconds))->excludes(file);
    auto *const faults = app.add_option("--faults", options.faults.count)->check(CLI::Range(uint64_t{0}, maxFaults));
    app.add_option("--seed", options.faults.seed)->check(anyNumber)->needs(faults);
    app.add_option("--flip", options.faults.flippedFrame)->check(anyNumber)->excludes(faults);
    app.add_option("--timeout", options.timeout)->check(CLI::Range(minTime, hourInSeconds));
    app.add_flag("--dump", options.isDumped);
    app.add_flag("-v,--verbose", options.isVerbose);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &help) {
        return app.exit(help);
    } catch (const CLI::ParseError &error) {
        const std::vector<std::string> unknown = app.remaining();
        const std::string kind =
            unknown.empty() || unknown.front()[0] != '-' ? "unexpected argument " : "unknown option ";
        return PrintError((unknown.empty() ? error.what() : kind + unknown.front()) + "; see --help", EXIT_USAGE);
    }
    return std::nullopt;
}

int PrintSystemError(const std::string &path)
{
    return PrintError(path + ": " + std::strerror(errno));
}

// Prints to standard output, or to standard error if the stream or the trace goes to standard output.
bool Print(const PairOptions &options, const std::string &lines)
{
    const bool isUsed = options.outputPath == STANDARD_STREAM || options.tracePath == STANDARD_STREAM;
    std::FILE *const file = isUsed ? stderr : stdout;
    return std::fputs(lines.c_str(), file) >= 0 && std::fflush(file) == 0;
}

bool IsSameFile(int left, int right)
{
    struct stat a {};
    struct stat b {};
    return fstat(left, &a) == 0 && fstat(right, &b) == 0 &&
           (left == right || (S_ISREG(a.st_mode) && a.st_dev == b.st_dev && a.st_ino == b.st_ino));
}

// Opens the files that the sink and the source write, and sets `output` and `trace` to their descriptors, or to -1 if
// there is none. Returns an error message, or an empty string on success.
std::string OpenFiles(const PairOptions &options, int input, int &output, int &trace)
{
    const std::array<std::pair<const std::string &, int &>, 2> files = {
        {{options.outputPath, output}, {options.tracePath, trace}}};
    for (const auto &[path, fd] : files) {
        constexpr int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY;
        fd = path.empty() ? -1 : path == STANDARD_STREAM ? STDOUT_FILENO : open(path.c_str(), flags, 0666);
        if (fd < 0 && !path.empty()) {
            return path + ": " + std::strerror(errno);
        }
    }
    std::string conflict = IsSameFile(output, input)   ? options.outputPath + ": the output is the input file"
                           : IsSameFile(trace, input)  ? options.tracePath + ": the trace is the input file"
                           : IsSameFile(trace, output) ? options.tracePath + ": the trace is the output file"
                                                       : "";
    if (!conflict.empty()) {
        return conflict;
    }
    // Truncate only now: opening with O_TRUNC would already have truncated a file that is the input. A pipe or a device
    // cannot be truncated (EINVAL).
    for (const auto &[path, fd] : files) {
        if (fd >= 0 && path != STANDARD_STREAM && ftruncate(fd, 0) != 0 && errno != EINVAL) {
            return path + ": " + std::strerror(errno);
        }
    }
    return "";
}

// Creates a connected pair of sockets with a timeout in seconds: the source sends through the first, the sink
// receives from the second. Returns false, with errno set, on failure.
bool MakeConnection(double timeout, std::array<int, 2> &ends)
{
    using std::chrono::microseconds;
    constexpr int64_t microsecondsPerSecond = 1000000;
    const auto limit = std::chrono::duration_cast<microseconds>(std::chrono::duration<double>(timeout)).count();
    timeval time{};
    time.tv_sec = static_cast<time_t>(limit / microsecondsPerSecond);
    time.tv_usec = static_cast<suseconds_t>(limit % microsecondsPerSecond);
    return socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0 &&
           setsockopt(ends[0], SOL_SOCKET, SO_SNDTIMEO, &time, sizeof(time)) == 0 &&
           setsockopt(ends[1], SOL_SOCKET, SO_RCVTIMEO, &time, sizeof(time)) == 0;
}

StreamDescription DescribeStream()
{
    StreamDescription description;
    DHConnectInfo &connection = description.connection;
    GetLocalDeviceNetworkId(connection.sourceNetworkId);
    connection.sinkNetworkId = GetRandomID() + GetRandomID();
    connection.sourceIp = "127.0.0.1";
    connection.sinkIp = "127.0.0.2";
    connection.sinkBrMac = "00:00:5E:00:53:01";
    connection.port = 8080;

    DHOSTRADeviceJson device;
    device.deviceId_ = connection.sourceNetworkId;
    device.deviceName_ = DEVICE_NAME;
    device.localIp_ = connection.sourceIp;
    device.remoteIp_ = connection.sinkIp;
    device.port_ = connection.port;
    device.supportMic_ = true;
    device.Marshal(description.device);

    OSTRADeviceService service;
    service.deviceId_ = device.deviceId_;
    service.deviceName_ = device.deviceName_;
    service.serviceId_ = "microphone";
    service.serviceType_ = 4;
    service.properties_ = {{"2102", R"({"codecs":[0,2],"profiles":[{"sampleRate":48000,"channel":12,"format":1},)"
                                    R"({"sampleRate":16000,"channel":16,"format":1}]})"},
                           {"note", "quotes \" and \\ and \n survive"}};
    service.status_ = {{"state", "idle"}};
    std::vector<uint8_t> bytes;
    service.PackServiceData(bytes);
    description.service.assign(bytes.begin(), bytes.end());

    description.settings = {
        {1, std::to_string(SAMPLE_RATE)}, {2, std::to_string(CHANNELS)}, {3, std::to_string(CHUNK_MS)}};
    return description;
}

// Prints the reports of both sides and returns the exit status. Omits consequences of another failure.
int PrintReports(const PairOptions &options, const ChildProcess &source, const ChildProcess &sink)
{
    Print(options, source.report.summary + sink.report.summary);
    const bool hasCause = !source.report.failure.empty() || !sink.report.failure.empty();
    bool hasFailed = false;
    for (const ChildProcess *child : {&source, &sink}) {
        const SideReport &report = child->report;
        for (const std::string &failure : {child->exitReason, report.failure, hasCause ? "" : report.consequence}) {
            if (!failure.empty()) {
                hasFailed = true;
                PrintError(failure);
            }
        }
    }
    if (hasFailed) {
        return EXIT_FAILURE;
    }
    if (!Print(options, "result\n  " + source.report.result + sink.report.result + "\n")) {
        return PrintSystemError("standard output");
    }
    return source.report.result.empty() ? EXIT_SUCCESS : EXIT_INTERRUPTED;
}

}  // namespace

int main(int argc, char **argv)
{
    PairOptions options;
    if (const auto status = ParseOptions(argc, argv, options)) {
        return std::fflush(stdout) == 0 ? *status : PrintSystemError("standard output");
    }
    setenv("OSTRA_HOST_LOG_LEVEL", "error", 0);  // the library logs each CRC at info level
    std::signal(SIGPIPE, SIG_IGN);               // a failed write returns an error instead
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGINT, SIG_DFL);  // a shell may start a background process with SIGINT ignored
    std::signal(SIGCHLD, SIG_DFL);
    Input input;
    if (!input.Open(options)) {
        return PrintSystemError(input.Name());
    }
    const std::optional<uint64_t> chunks = input.Length().chunks;
    if (chunks && options.faults.count > MaxFaults(*chunks)) {
        return PrintError("--faults: the maximum for " + input.Name() + " is " + std::to_string(MaxFaults(*chunks)),
                          EXIT_USAGE);
    }
    int output = -1;
    int trace = -1;
    if (const std::string error = OpenFiles(options, input.Descriptor(), output, trace); !error.empty()) {
        return PrintError(error);
    }
    if (!Print(options, "sending " + input.Name() + ", as fast as possible\n")) {
        return PrintSystemError("standard output");
    }

    std::array<int, 2> ends{};
    if (!MakeConnection(options.timeout, ends)) {
        return PrintSystemError("socket pair");
    }
    // Not earlier, so that a signal still ends the program while it waits for the other end of a FIFO.
    HandleInterrupts();
    const StreamDescription description = DescribeStream();
    ChildProcess source = Start("source", [&] {
        close(ends[1]);
        return RunSource(ends[0], description, options, input, trace);
    });
    close(ends[0]);
    ChildProcess sink = Start("sink", [&] { return RunSink(ends[1], description, options, output); });
    close(ends[1]);
    WaitForBoth(source, sink, options.timeout);
    return PrintReports(options, source, sink);
}
