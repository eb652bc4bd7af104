#include "host/commands/output_folder.h"

#include "platform/fmwrapper/session.h"

#include <filesystem>

namespace host {

std::optional<std::string> MakeOutputFolder(const std::string& folder, std::string& problem) {
    std::error_code error;
    const std::string absolute = std::filesystem::absolute(folder, error).lexically_normal().string();
    auto path = fm::HostPath(fm::CurrentSession().drives, absolute);
    if (!path) {
        problem = "the folder " + folder + " is outside every drive";
        return std::nullopt;
    }
    std::filesystem::create_directories(folder, error);
    if (std::error_code ignored; !std::filesystem::is_directory(absolute, ignored)) {
        problem = "cannot make the folder " + folder + (error ? ": " + error.message() : "");
        return std::nullopt;
    }
    if (!path->ends_with('/')) *path += '/';
    return path;
}

} // namespace host
