// SPDX-License-Identifier: Apache-2.0
//
// The example pair: starts a source and a sink process, joined by a socket pair, lets the source send a stream in
// channel frames, and compares what the sink put together with the input, byte by byte. See Usage below.

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dh_utils_tools.h"
#include "stream_pair.h"

namespace Adapter = OHOS::DistributedHardware::OstraAdapter;

namespace {

constexpr int EXIT_USAGE = 2;

void PrintUsage(FILE *out)
{
    std::fputs(
        "Usage: channel_pair [--flip FRAME] [--dump] [FILE]\n"
        "\n"
        "Sends FILE, or 5 s of a generated tone (48 kHz, 16 bits, stereo), from a source process to a sink\n"
        "process in channel frames of 20 ms, and compares what arrives with the input, byte by byte. Before\n"
        "the stream go the source's device document (frame 0), its service document (frame 1) and the stream's\n"
        "settings (frame 2).\n"
        "\n"
        "  --flip FRAME  flip one bit of frame FRAME (counted from 0) on the way, to see it caught\n"
        "  --dump        let the sink dump the stream below /data/local/tmp/\n"
        "  --help        print this text\n"
        "\n"
        "Exits with 0 when every byte arrived, 1 when not, 2 for a wrong call.\n",
        out);
}

struct CloseFile {
    void operator()(FILE *file) const
    {
        std::fclose(file);
    }
};
using File = std::unique_ptr<FILE, CloseFile>;

struct Call {
    PairOptions options;
    std::string inputPath;  // empty for the tone
};

bool IsFrameNumber(const std::string &text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

// Returns the exit status when the program is to end at once.
std::optional<int> ReadArguments(const std::vector<std::string> &arguments, Call &call)
{
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (argument == "--help") {
            PrintUsage(stdout);
            return EXIT_SUCCESS;
        }
        const bool isFrameNumber = argument == "--flip" && i + 1 < arguments.size() && IsFrameNumber(arguments[i + 1]);
        if (isFrameNumber) {
            call.options.flippedFrame = std::strtoull(arguments[++i].c_str(), nullptr, 10);
        } else if (argument == "--dump") {
            call.options.isDumped = true;
        } else if (argument.empty() || argument.rfind("--", 0) == 0 || !call.inputPath.empty()) {
            PrintUsage(stderr);
            return EXIT_USAGE;
        } else {
            call.inputPath = argument;
        }
    }
    return std::nullopt;
}

// A tone of 440 Hz on the left and 660 Hz on the right.
File GenerateTone()
{
    constexpr uint32_t seconds = 5;
    constexpr double amplitude = 12000;
    constexpr double frequencies[CHANNELS] = {440, 660};
    constexpr double fullTurn = 2 * 3.14159265358979323846;
    File tone(std::tmpfile());
    if (tone == nullptr) {
        return tone;
    }
    for (uint32_t i = 0; i < seconds * SAMPLE_RATE; ++i) {
        for (double frequency : frequencies) {
            const double phase = fullTurn * frequency * i / SAMPLE_RATE;
            const auto sample = static_cast<int16_t>(std::lround(amplitude * std::sin(phase)));
            const auto bits = static_cast<uint16_t>(sample);
            std::fputc(bits & 0xFF, tone.get());
            std::fputc(bits >> 8, tone.get());
        }
    }
    std::rewind(tone.get());
    return tone;
}

bool HaveEqualContent(FILE *left, FILE *right)
{
    constexpr size_t chunk = 64 * 1024;
    std::vector<char> a(chunk);
    std::vector<char> b(chunk);
    size_t size = 0;
    do {
        size = std::fread(a.data(), 1, chunk, left);
        if (std::fread(b.data(), 1, chunk, right) != size || std::memcmp(a.data(), b.data(), size) != 0) {
            return false;
        }
    } while (size > 0);
    return std::ferror(left) == 0 && std::ferror(right) == 0;
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

// Runs one side in a process of its own and returns its id.
pid_t StartSide(int unusedSocket, const std::function<bool()> &side)
{
    std::fflush(nullptr);
    const pid_t process = fork();
    if (process != 0) {
        return process;
    }
    close(unusedSocket);
    _exit(side() ? EXIT_SUCCESS : EXIT_FAILURE);
}

bool EndedWell(pid_t process)
{
    int status = 0;
    return process > 0 && waitpid(process, &status, 0) == process && WIFEXITED(status) &&
           WEXITSTATUS(status) == EXIT_SUCCESS;
}

// Returns true when both sides ended well.
bool RunPair(const PairOptions &options, FILE *input, FILE *output)
{
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) != 0) {
        std::perror("socketpair");
        return false;
    }
    const Adapter::DHConnectInfo connection = DescribeConnection();
    const Offer offer = MakeOffer(connection);
    const PairLink sourceLink{sockets[0], connection, offer};
    const PairLink sinkLink{sockets[1], connection, offer};
    const pid_t source = StartSide(sinkLink.socket, [&] { return RunSource(sourceLink, options, input); });
    const pid_t sink = StartSide(sourceLink.socket, [&] { return RunSink(sinkLink, options, output); });
    close(sockets[0]);
    close(sockets[1]);
    const bool sourceEndedWell = EndedWell(source);
    return EndedWell(sink) && sourceEndedWell;
}

}  // namespace

int main(int argc, char **argv)
{
    Call call;
    if (const auto status = ReadArguments({argv + 1, argv + argc}, call)) {
        return *status;
    }
    const File input = call.inputPath.empty() ? GenerateTone() : File(std::fopen(call.inputPath.c_str(), "rb"));
    const File output(std::tmpfile());
    if (input == nullptr || output == nullptr) {
        std::perror(call.inputPath.empty() ? "temporary file" : call.inputPath.c_str());
        return EXIT_FAILURE;
    }
    const bool endedWell = RunPair(call.options, input.get(), output.get());
    std::rewind(input.get());
    std::rewind(output.get());
    const bool isEqual = HaveEqualContent(input.get(), output.get());
    std::printf("result\n  %s\n", isEqual ? "every byte arrived" : "the stream that arrived DIFFERS from the input");
    if (!endedWell) {
        std::puts("  a side FAILED: its log tells why");
    }
    return endedWell && isEqual ? EXIT_SUCCESS : EXIT_FAILURE;
}
