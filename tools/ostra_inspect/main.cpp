// SPDX-License-Identifier: Apache-2.0
//
// ostra-inspect: shows what the library makes of a frame, a document, a parcel, events or a stream dump.

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <memory>
#include <utility>

#include "input.h"
#include "ostra_version.h"
#include "subjects.h"

namespace {

constexpr char PROGRAM[] = "ostra-inspect";
constexpr char DESCRIPTION[] =
    "Shows what libostra_adapter_utils makes of what travels: a frame, a document, a parcel, events, a stream dump.\n"
    "Input comes from the arguments, a file, or standard input when there is none.";
constexpr char FOOTER[] =
    "HEX is written as logs and dumps do: 85 68 65, 8568, 0x85,0x68, the columns of hexdump -C, xxd or od -t x1.\n"
    "A file holds the bytes themselves or such a text.\n\n"
    "Exits with 0 when the input could be read, 1 when not, 2 for a wrong call. What the library refuses is told in\n"
    "its own words, which are those of its log.\n\n"
    "Levels are in dB of full scale, silence is below -60 dB, samples are little-endian. The JSON of events is one\n"
    "object a line; lines that are no events are counted, and make the status 1.";

constexpr int EXIT_USAGE = 2;
constexpr int HIGHEST_RATE = 768000;
constexpr int MOST_CHANNELS = 32;

struct Options {
    std::vector<std::string> arguments;
    std::string text;
    DumpOptions dump;
    EventOptions events;
    bool isRaw = false;
    bool isLogShown = false;
    bool isJson = false;
};

using Inspect = std::function<Finding()>;

// In the help of all subcommands, which the manual page is made from, each is a heading of its own.
class PageFormatter : public CLI::Formatter {
public:
    std::string make_expanded(const CLI::App *subject) const override
    {
        std::string entries = make_positionals(subject) + make_groups(subject, CLI::AppFormatMode::Sub);
        for (const char *heading : {"\nPositionals:", "\nOptions:"}) {
            entries = CLI::detail::find_and_replace(entries, heading, "");
        }
        return "\n" + subject->get_name() + ":\n  " + subject->get_description() + "\n" + entries;
    }
};

void AddBytes(CLI::App &app, const char *name, const char *help, Options &options,
              Finding (*inspect)(const std::string &), Inspect &chosen)
{
    CLI::App *const subject = app.add_subcommand(name, help);
    subject->add_option("HEX|FILE", options.arguments, "the bytes, or the file that holds them; - is standard input")
        ->option_text(" ");
    subject->add_flag("--raw", options.isRaw, "take the bytes of a file as they are, even if they look like HEX");
    subject->callback([&options, &chosen, inspect] {
        chosen = [&options, inspect] {
            return inspect(ReadBytes(options.arguments, options.isRaw));
        };
    });
}

void AddDocument(CLI::App &app, const char *name, const char *help, Options &options,
                 Finding (*inspect)(const std::string &), Inspect &chosen)
{
    CLI::App *const subject = app.add_subcommand(name, help);
    subject->add_option("FILE", options.text, "the document; - is standard input, and {... the document itself")
        ->option_text(" ");
    subject->callback([&options, &chosen, inspect] {
        chosen = [&options, inspect] {
            return inspect(ReadText(options.text));
        };
    });
}

void AddEvents(CLI::App &app, EventOptions &options, Inspect &chosen)
{
    CLI::App *const subject =
        app.add_subcommand("events", "business-flow events, one a line, as OSTRA_HOST_EVENT_OUTPUT writes them");
    subject->add_option("FILE", options.path, "the events; - is standard input")->option_text(" ");
    subject->add_flag("-f,--follow", options.isFollowed, "wait for more at the end of the file");
    subject->callback([&options, &chosen] {
        chosen = [&options] {
            PrintEvents(options);
            return Finding();
        };
    });
}

void AddDump(CLI::App &app, DumpOptions &options, Inspect &chosen)
{
    CLI::App *const subject =
        app.add_subcommand("dump", "a stream dump: length, levels, clipped samples, silence, waveform");
    subject->add_option("FILE", options.path, "the dump; - is standard input")->option_text(" ")->required();
    subject->add_option("--rate", options.rate, "samples a second and channel; 48000 by default")
        ->option_text("N")
        ->check(CLI::Range(1, HIGHEST_RATE));
    subject->add_option("--channels", options.channels, "number of channels; 2 by default")
        ->option_text("N")
        ->check(CLI::Range(1, MOST_CHANNELS));
    subject->add_option("--bits", options.bits, "bits of a sample: 8 (unsigned), 16, 24 or 32; 16 by default")
        ->option_text("N")
        ->check(CLI::IsMember({8, 16, 24, 32}));
    subject->add_option("--wav", options.wavPath, "write the sound to a WAV file")->option_text("OUT");
    subject->add_option("--image", options.imagePath, "let sox draw a spectrogram")->option_text("OUT.png");
    subject->callback([&options, &chosen] {
        chosen = [&options] {
            return InspectDump(options);
        };
    });
}

// The error as one line, whatever was in the input's name.
int Fail(const std::string &error)
{
    std::fprintf(stderr, "%s: %s\n", PROGRAM, Printable(error).c_str());
    return EXIT_FAILURE;
}

int Print(Finding finding, const Options &options)
{
    if (options.isLogShown) {
        finding.report.Add(LogReport(finding.log));
    }
    if (options.isJson) {
        if (!finding.refusal.empty()) {
            finding.report.Add("error", finding.refusal);
        }
        std::printf("%s\n", ToJson(finding.report, true).c_str());
    } else {
        std::printf("%s", ToText(finding.report).c_str());
    }
    return finding.refusal.empty() ? EXIT_SUCCESS : Fail(finding.refusal);
}

int Run(const Inspect &chosen, const Options &options, bool isPrinted)
{
    int status = EXIT_SUCCESS;
    try {
        const Finding finding = chosen();
        status = isPrinted ? Print(finding, options) : EXIT_SUCCESS;
    } catch (const std::exception &error) {
        if (options.isJson && isPrinted) {
            Report report;
            report.Add("error", std::string(error.what()));
            std::printf("%s\n", ToJson(report, true).c_str());
        }
        status = Fail(error.what());
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        return Fail(std::string("standard output: ") + std::strerror(errno));
    }
    return status;
}

}  // namespace

int main(int argc, char **argv)
{
    CollectLog();
    Options options;
    Inspect chosen;
    CLI::App app(DESCRIPTION, PROGRAM);
    app.footer(FOOTER);
    app.formatter(std::make_shared<PageFormatter>());
    app.set_version_flag("--version", std::string(PROGRAM) + " " + OSTRA_VERSION);
    app.set_help_all_flag("--help-all", "Print this help message with that of all subcommands and exit");
    app.add_flag("--json", options.isJson, "print JSON");
    app.add_flag("--log", options.isLogShown, "show what the library logs");
    app.require_subcommand(1);
    app.fallthrough();
    AddBytes(app, "frame", "a channel frame: header value, content, CRC-16", options, InspectFrame, chosen);
    AddDocument(app, "service", "a device service document", options, InspectService, chosen);
    AddDocument(app, "audio", "audio capabilities: a properties object with the member 2102", options, InspectAudio,
                chosen);
    AddDocument(app, "device", "a device document, with its table of versions", options, InspectDevice, chosen);
    AddBytes(app, "parcel", "a map of integers and texts as it travels in a parcel", options, InspectParcel, chosen);
    AddEvents(app, options.events, chosen);
    AddDump(app, options.dump, chosen);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &help) {
        return app.exit(help);
    } catch (const CLI::ParseError &error) {
        // CLI11 misses the subcommand before it sees that there is an unknown one.
        const std::vector<std::string> unknown = app.remaining();
        Fail(unknown.empty() ? error.what() : "not expected: " + unknown.front());
        return EXIT_USAGE;
    }
    options.events.isJson = options.isJson;
    return Run(chosen, options, !app.got_subcommand("events"));
}
