// SPDX-License-Identifier: Apache-2.0
//
// ostra-inspect: shows what the library reads from frames, documents, parcels and events.

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "inspect.h"
#include "ostra_version.h"

namespace {

constexpr char PROGRAM[] = "ostra-inspect";
constexpr char DESCRIPTION[] =
    "Shows what libostra_adapter_utils reads from a frame, a document, a parcel or events, and what it ignores.";
constexpr char FOOTER[] =
    "HEX consists of pairs of hexadecimal digits, with or without spaces, commas and 0x: 85 68 65, 856865, 0x85,0x68.\n"
    "A file or standard input contains the bytes themselves: xxd -r converts a hex dump, xxd -r -p plain digits.\n\n"
    "Control characters and invalid UTF-8 are printed as \\x and two digits. With --json, events are printed as one\n"
    "object per line. Of the content of a frame, the first 512 bytes are shown, with --json 10,000; of a list, 10,000\n"
    "elements. The input is limited: a frame to 64 MiB; a document, a parcel or the line of an event to 1 MiB. The\n"
    "exit status is 0 if the input is valid, 1 if it is rejected or cannot be read, and 2 for invalid arguments.\n\n"
    "Examples:\n"
    "  $ ostra-inspect frame 85 68 65 6C 6C 6F\n"
    "  $ xxd -r message.hex | ostra-inspect frame --skip 8 --crc A1CD\n"
    "  $ ostra-inspect frame --content frame.bin > content.bin\n"
    "  $ ostra-inspect service '{\"deviceId\":\"d1\",\"serviceType\":4}'\n"
    "  $ ostra-inspect --json parcel parcel.bin\n"
    "  $ ostra-inspect events --failed --pid 4711 events.txt\n"
    "  $ tail -f events.txt | ostra-inspect events -";
constexpr int EXIT_USAGE = 2;
constexpr size_t MAX_JSON_CONTENT = 10000;  // bytes, to bound memory use

struct Options {
    std::vector<std::string> arguments;
    std::string path;
    FrameOptions frame;
    EventOptions events;
    bool isContentOnly = false;
};

// Formats --help-all, the source of the manual page, with a heading for each subcommand.
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_expanded(const CLI::App *subcommand) const override
    {
        std::string entries = make_positionals(subcommand) + make_groups(subcommand, CLI::AppFormatMode::Sub);
        for (const char *heading : {"\nPositionals:", "\nOptions:"}) {
            entries = CLI::detail::find_and_replace(entries, heading, "");
        }
        return "\n" + subcommand->get_name() + ":\n  " + subcommand->get_description() + "\n" + entries;
    }
};

// Prints the error on one line, even if a file name has control characters.
int ReportError(const std::string &error)
{
    std::fprintf(stderr, "%s: %s\n", PROGRAM, Escape(error).c_str());
    return EXIT_FAILURE;
}

[[noreturn]] void ExitOutOfMemory()
{
    std::fprintf(stderr, "%s: out of memory\n", PROGRAM);
    std::_Exit(EXIT_FAILURE);
}

void AddSubcommands(CLI::App &app, Options &options)
{
    const auto add = [&app](const char *name, const char *help, const char *kind, auto &input, const char *inputHelp) {
        CLI::App *const subcommand = app.add_subcommand(name, help);
        subcommand->add_option(kind, input, inputHelp)->option_text(" ")->check([](const std::string &argument) {
            return argument.empty() ? "empty argument" : "";
        });
    };
    constexpr char bytes[] = "the bytes, or a file that contains them; standard input if - or omitted";
    constexpr char document[] = "the document, if it starts with {, or a file; standard input if - or omitted";
    add("frame", "a channel frame: header value, content, CRC-16", "HEX|FILE", options.arguments, bytes);
    add("service", "a device service document", "FILE", options.path, document);
    add("audio", "audio capabilities: a properties object with the member 2102", "FILE", options.path, document);
    add("device", "a device document with its version table", "FILE", options.path, document);
    add("parcel", "a map from integers to strings in a parcel", "HEX|FILE", options.arguments, bytes);
    add("events", "business-flow events, one per line, as OSTRA_HOST_EVENT_OUTPUT writes them", "FILE", options.path,
        "a file with the events; standard input if - or omitted");
}

void AddOptions(CLI::App &app, Options &options)
{
    app.set_help_flag("-h,--help", "print this help and exit");
    app.set_version_flag("--version", std::string(PROGRAM) + " " + OSTRA_VERSION, "print the version and exit");
    app.set_help_all_flag("--help-all", "print the help of all subcommands and exit");
    auto *const json = app.add_flag("--json", options.events.isJson, "print JSON");
    const CLI::Range numbers(0, std::numeric_limits<int>::max());
    CLI::App *const frame = app.get_subcommand("frame");
    frame->add_option("--skip", options.frame.skip, "skip the first N bytes; 8 for a message of channel_pair")
        ->option_text("N")
        ->check(numbers);
    frame->add_option("--crc", options.frame.crc, "fail unless the CRC-16 of the frame is HEX")
        ->option_text("HEX")
        ->check([](const std::string &digits) {
            char *end = nullptr;
            const bool is16Bit = std::strtoul(digits.c_str(), &end, 16) <= UINT16_MAX;
            const bool isHex = std::isxdigit(static_cast<unsigned char>(digits[0])) != 0 && *end == '\0';
            return isHex && is16Bit ? "" : "not a 16-bit number in hexadecimal: " + digits;
        });
    frame->add_flag("--content", options.isContentOnly, "write only the raw content to a pipe or file")->excludes(json);
    CLI::App *const events = app.get_subcommand("events");
    events->add_flag("--failed", options.events.isFailedOnly, "show only failures");
    events->add_option("--pid", options.events.pid, "show only this process")->option_text("PID")->check(numbers);
}

Inspection Inspect(const std::string &subcommand, Options &options)
{
    if (subcommand == "frame") {
        return InspectFrame(ReadBytes(options.arguments, MAX_FRAME_BYTES), options.frame);
    }
    if (subcommand == "parcel") {
        return InspectParcel(ReadBytes(options.arguments, MAX_DOCUMENT_BYTES));
    }
    if (subcommand == "events") {
        PrintEvents(options.path, options.events);
        return {};
    }
    const std::string document = ReadDocument(options.path);
    return subcommand == "service" ? InspectService(document)
           : subcommand == "audio" ? InspectAudio(document)
                                   : InspectDevice(document);
}

void Print(const Inspection &inspection, const Options &options)
{
    cJSON *const report = inspection.report.get();
    if (options.isContentOnly) {
        std::fwrite(inspection.content.data(), 1, inspection.content.size(), stdout);
    } else if (!options.events.isJson) {
        const char *const heading = inspection.content.empty() ? "" : "content\n";
        std::printf("%s%s%s", ToText(report).c_str(), heading, HexDump(inspection.content).c_str());
    } else {
        if (!inspection.error.empty()) {
            AddString(report, "error", inspection.error);
        }
        if (cJSON_HasObjectItem(report, "content_length") != 0) {
            AddString(report, "content", ToHex(inspection.content.substr(0, MAX_JSON_CONTENT)));
        }
        if (inspection.content.size() > MAX_JSON_CONTENT) {
            AddNumber(report, "content_omitted", static_cast<int64_t>(inspection.content.size() - MAX_JSON_CONTENT));
        }
        std::printf("%s\n", ToJson(report, true).c_str());
    }
}

int Run(const std::string &subcommand, Options &options)
{
    Inspection inspection;
    try {
        if (options.isContentOnly && isatty(STDOUT_FILENO) != 0) {
            throw InputError("--content writes binary data; redirect standard output to a file or pipe");
        }
        inspection = Inspect(subcommand, options);
    } catch (const InputError &error) {
        inspection.error = error.what();
    }
    if (subcommand != "events") {
        Print(inspection, options);
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        return ReportError(std::string("standard output: ") + std::strerror(errno));
    }
    return inspection.error.empty() ? EXIT_SUCCESS : ReportError(inspection.error);
}

}  // namespace

int main(int argc, char **argv)
{
    // cJSON and the library report a failed allocation as invalid JSON or a missing member, so end the program instead.
    std::set_new_handler(ExitOutOfMemory);
    cJSON_Hooks hooks = {::operator new, ::operator delete };
    cJSON_InitHooks(&hooks);
    CollectLog();
    Options options;
    CLI::App app(DESCRIPTION, PROGRAM);
    app.footer(FOOTER);
    app.formatter(std::make_shared<HelpFormatter>());
    app.require_subcommand(1);
    app.fallthrough();
    AddSubcommands(app, options);
    AddOptions(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &help) {
        return app.exit(help);
    } catch (const CLI::ParseError &error) {
        // CLI11 reports the missing subcommand first, even if there is an unknown one.
        const std::vector<std::string> unknown = app.remaining();
        const std::string kind =
            unknown.empty() || unknown.front()[0] != '-' ? "unexpected argument " : "unknown option ";
        ReportError((unknown.empty() ? error.what() : kind + unknown.front()) + "; see --help");
        return EXIT_USAGE;
    }
    return Run(app.get_subcommands().front()->get_name(), options);
}
