#include "host/commands/command_line.h"

#include "host/commands/output.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <getopt.h>
#include <iterator>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace host {
namespace {

constexpr char kUsage[] = R"(usage: corvane COMMAND [OPTIONS] …

commands
  eval [CALC…]   evaluate calculations in one session; without one, or for "-",
                 one a line from standard input
  functions      list the functions that the plug-in registered
  about          show what the plug-in says about itself
  help [NAME]    show the manual of a function, or all functions by group

commands on database files, which hold media in container fields
  db create FILE                     make a database file
  db table FILE TABLE FIELD:TYPE…    add a table; types: text, number, container
  import FILE TABLE FIELD PATH…      a record for each file, also of folders
  show FILE [TABLE]                  the records, or the tables
  update FILE TABLE FIELD=CALC…      evaluate the calculations for each record
  export FILE TABLE FIELD            write the field of each record to a file
  sheet FILE TABLE FIELD             make a web page of pictures and waveforms
  worker [FILE TABLE FIELD=CALC…]    evaluate what standard input asks for, for
                                     programs that spread work over machines

options
  --plugin PATH            plug-in library (default: the one beside the program)
  --database PATH          current database, host path text or Unix path
                           (default: Untitled.fp7 in the current folder,
                           or in the first drive when that is on none)
  --drive ROOT=FOLDER      a drive: C:=/data, \\server\share=/mnt/s,
                           Z:=remote:/mnt/z; repeatable, beside those of
                           CORVANE_DRIVES (separated by ";"); default C:=/
  --hidden marked|named    which files are hidden: those that a file server has
                           marked and those whose names begin with a point, or
                           the latter only, which lists faster (default marked)
  --interface-version N    plug-in interface version of the host (default 51)
  --host-version TEXT      version of the host (default 10.0v1)
  --ui auto|none|gtk       real windows, or none
  --answer TEXT            without windows, what the next dialog answers: ok,
                           cancel, file:PATH, folder:PATH, set:KEY=VALUE,…;
                           repeatable
  --json                   results as JSON, one object per calculation (or
                           function, or record)
  --raw                    text results byte for byte
  --save-streams DIR       write the streams of container results to files
  --strict                 exit status 1 when a calculation answers an error:
                           a code, or a text $code:message
  --progress auto|always|never   progress of long work on standard error
  --help                   this text
  --version                the version of program and plug-in

options of commands on database files
  --where CALC             only records for which it is true
  --to FOLDER              export, sheet: where the files go
  --name CALC              export: the file's name; sheet: the title
  --name-field FIELD       import: the text field that takes the file's name
  --as auto|image|file     import: as an image or as any file; auto tells by name
  --by-reference           import: keep where the files are, not their bytes
  --replace                export: overwrite files
  --jobs N                 update: so many processes
  --resume                 update: go on where the same update stopped

A calculation that begins with "-" stands after "--".
)";

enum Option : int {
    kPlugin = 256,
    kDatabase,
    kDrive,
    kHidden,
    kInterfaceVersion,
    kHostVersion,
    kUi,
    kAnswer,
    kJson,
    kRaw,
    kSaveStreams,
    kStrict,
    kProgress,
    kVersion,
    kTableOption ///< of TableOptions, by its name
};

constexpr option kOptions[] = {
    {"plugin", required_argument, nullptr, kPlugin},
    {"database", required_argument, nullptr, kDatabase},
    {"drive", required_argument, nullptr, kDrive},
    {"hidden", required_argument, nullptr, kHidden},
    {"interface-version", required_argument, nullptr, kInterfaceVersion},
    {"host-version", required_argument, nullptr, kHostVersion},
    {"ui", required_argument, nullptr, kUi},
    {"answer", required_argument, nullptr, kAnswer},
    {"json", no_argument, nullptr, kJson},
    {"raw", no_argument, nullptr, kRaw},
    {"save-streams", required_argument, nullptr, kSaveStreams},
    {"strict", no_argument, nullptr, kStrict},
    {"progress", required_argument, nullptr, kProgress},
    {"where", required_argument, nullptr, kTableOption},
    {"to", required_argument, nullptr, kTableOption},
    {"name", required_argument, nullptr, kTableOption},
    {"name-field", required_argument, nullptr, kTableOption},
    {"as", required_argument, nullptr, kTableOption},
    {"jobs", required_argument, nullptr, kTableOption},
    {"by-reference", no_argument, nullptr, kTableOption},
    {"replace", no_argument, nullptr, kTableOption},
    {"resume", no_argument, nullptr, kTableOption},
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, kVersion},
    {nullptr, 0, nullptr, 0},
};

std::string NotAChoice(const char* option, std::string_view value, const char* choices) {
    return std::string(option) + " takes " + choices + ", not \"" + std::string(value) + '"';
}

bool IsSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

// A later drive takes the place of an earlier one with the same root.
std::string AddDrive(std::vector<fm::Drive>& drives, std::string_view text) {
    auto drive = fm::ParseDrive(text);
    if (!drive)
        return "\"" + std::string(text) + R"(" is no drive: write C:=FOLDER or \\server\share=FOLDER)";
    const auto same = std::ranges::find(drives, drive->root, &fm::Drive::root);
    if (same != drives.end()) {
        *same = std::move(*drive);
    } else {
        drives.push_back(std::move(*drive));
    }
    return {};
}

std::string AddDrivesOfEnvironment(std::vector<fm::Drive>& drives) {
    const char* variable = std::getenv("CORVANE_DRIVES");
    std::string_view rest = variable != nullptr ? variable : "";
    while (!rest.empty()) {
        const std::string_view text = rest.substr(0, rest.find(';'));
        rest.remove_prefix(std::min(text.size() + 1, rest.size()));
        if (text.empty()) continue;
        if (std::string problem = AddDrive(drives, text); !problem.empty())
            return "CORVANE_DRIVES: " + problem;
    }
    return {};
}

// Without a display a window can't be opened; with one the plug-in finds out whether it opens.
std::string SetUi(SessionOptions& session, std::string_view value) {
    if (value != "auto" && value != "none" && value != "gtk")
        return NotAChoice("--ui", value, "auto, none or gtk");
    session.windows = value == "gtk" || (value == "auto" && (IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY")));
    return {};
}

std::string SetHidden(SessionOptions& session, std::string_view value) {
    if (value != "marked" && value != "named") return NotAChoice("--hidden", value, "marked or named");
    session.hidden_marks = value == "marked";
    return {};
}

std::string AddAnswer(SessionOptions& session, std::string_view value) {
    constexpr std::array<std::string_view, 3> kBeginnings = {"file:", "folder:", "set:"};
    const bool known =
        value == "ok" || value == "cancel" ||
        std::ranges::any_of(kBeginnings, [&](std::string_view start) { return value.starts_with(start); });
    if (!known) return NotAChoice("--answer", value, "ok, cancel, file:PATH, folder:PATH or set:KEY=VALUE,…");
    session.answers.emplace_back(value);
    return {};
}

std::string SetProgress(SessionOptions& session, std::string_view value) {
    if (value != "auto" && value != "always" && value != "never")
        return NotAChoice("--progress", value, "auto, always or never");
    session.progress = value == "always" || (value == "auto" && ::isatty(STDERR_FILENO) == 1);
    return {};
}

std::string SetInterfaceVersion(SessionOptions& session, std::string_view value) {
    const auto [end, error] =
        std::from_chars(value.data(), value.data() + value.size(), session.interface_version);
    if (error == std::errc() && end == value.data() + value.size()) return {};
    return NotAChoice("--interface-version", value, "a number of 16 bits");
}

std::string SetOption(CommandLine& line, int option, const char* value) {
    switch (option) {
    case kPlugin: line.session.plugin = value; return {};
    case kDatabase: line.session.database = value; return {};
    case kDrive: return AddDrive(line.session.drives, value);
    case kHidden: return SetHidden(line.session, value);
    case kInterfaceVersion: return SetInterfaceVersion(line.session, value);
    case kHostVersion: line.session.host_version = value; return {};
    case kUi: return SetUi(line.session, value);
    case kAnswer: return AddAnswer(line.session, value);
    case kJson: line.json = true; return {};
    case kRaw: line.raw = true; return {};
    case kSaveStreams: line.save_streams = value; return {};
    case kStrict: line.strict = true; return {};
    default: return SetProgress(line.session, value);
    }
}

} // namespace

std::optional<CommandLine> ReadCommandLine(int argc, char** argv, int& status) {
    CommandLine line;
    (void)SetUi(line.session, "auto");
    (void)SetProgress(line.session, "auto");
    std::string problem = AddDrivesOfEnvironment(line.session.drives);
    static char name[] = "corvane";
    argv[0] = name; // for what getopt says, which begins as all messages do
    for (int option = 0; problem.empty();) {
        int index = 0;
        option = ::getopt_long(argc, argv, "h", kOptions, &index);
        if (option == -1) break;
        if (option == 'h' || option == kVersion) {
            Output output;
            output.Buffer() = option == 'h' ? kUsage : "corvane " CORVANE_VERSION "\n";
            output.Flush();
            status = output.Good() ? 0 : kUsageError;
            return std::nullopt;
        }
        status = kUsageError;
        if (option == '?') return std::nullopt; // getopt has said what is wrong
        problem = option == kTableOption ? SetTableOption(line.table, kOptions[index].name, optarg)
                                         : SetOption(line, option, optarg);
    }
    if (problem.empty() && optind == argc) problem = "a command is missing; see corvane --help";
    if (!problem.empty()) {
        std::fprintf(stderr, "corvane: %s\n", problem.c_str());
        status = kUsageError;
        return std::nullopt;
    }
    line.command = argv[optind];
    line.arguments.assign(argv + optind + 1, argv + argc);
    return line;
}

} // namespace host
