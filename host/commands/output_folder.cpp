#include "host/commands/output_folder.h"

#include "platform/fmwrapper/session.h"

#include <filesystem>

namespace host {

std::optional<std::string> MakeOutputFolder(const std::string& folder, std::string& problem) {
    const std::string absolute = fm::AbsolutePath(folder);
    auto path = fm::HostPath(fm::CurrentSession().drives, absolute);
    if (!path) {
        problem = "the folder " + folder + " is outside every drive";
        return std::nullopt;
    }
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (std::error_code ignored; !std::filesystem::is_directory(absolute, ignored)) {
        problem = "cannot make the folder " + folder + (error ? ": " + error.message() : "");
        return std::nullopt;
    }
    if (!path->ends_with('/')) *path += '/';
    return path;
}

} // namespace host
