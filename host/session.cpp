#include "host/session.h"

#include <algorithm>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace host {
namespace {

// Unix path of the file that this process runs.
std::string ProgramFile() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

// "file:/C:/Db/Media.fp7" and the like: a word of at least two letters (one would be a drive), then ":/".
bool IsHostPathText(std::string_view path) {
    const auto word = path.find(":/");
    return word != std::string_view::npos && word >= 2 &&
           std::ranges::all_of(path.substr(0, word), [](char c) { return c >= 'a' && c <= 'z'; });
}

std::string DatabasePath(const std::string& path, const std::vector<fm::Drive>& drives) {
    if (IsHostPathText(path)) return path;
    auto host_path = fm::HostPath(drives, fm::AbsolutePath(path.empty() ? "Untitled.fp7" : path));
    // Results by reference need some database: where the current folder is on no drive, a first drive's.
    if (!host_path && path.empty()) host_path = fm::HostPath(drives, drives.front().folder + "/Untitled.fp7");
    return host_path ? "file:" + *host_path : "";
}

} // namespace

Session::Session(SessionOptions options) : options_(std::move(options)) {}

Session::~Session() {
    plugin_.Shutdown();
    fm::SetHostEngine(nullptr);
    fm::CurrentSession() = {}; // what the plug-in put there would outlive its code
}

std::string Session::Start() {
    fm::Session& desk = fm::CurrentSession();
    desk.drives = options_.drives;
    if (desk.drives.empty()) desk.drives.push_back({"C:", "", false});
    desk.application_file = ProgramFile();
    desk.application_version = options_.host_version;
    desk.windows = options_.windows;
    desk.hidden_marks = options_.hidden_marks;
    desk.progress = options_.progress;
    desk.answers.assign(options_.answers.begin(), options_.answers.end());

    engine_.application_version = options_.host_version;
    engine_.database = DatabasePath(options_.database, desk.drives);
    if (engine_.database.empty() && !options_.database.empty())
        return "the database " + options_.database + " is outside every drive";
    engine_.on_idle = [this] { plugin_.Idle(); };
    fm::SetHostEngine(&engine_);

    const std::string& plugin = options_.plugin;
    return plugin_.Start(
        plugin.empty()
            ? std::filesystem::path(desk.application_file).replace_filename("libcorvane.so").string()
            : plugin,
        options_.interface_version);
}

} // namespace host
