// The folder that a command fills with files.
#pragma once

#include <optional>
#include <string>

namespace host {

/// Makes a folder (Unix path) with those above it where they are missing, unless it is outside every drive:
/// functions could not write into it. Answers its host path text, with a "/" at its end; nullopt with the
/// reason in `problem`.
[[nodiscard]] std::optional<std::string> MakeOutputFolder(const std::string& folder, std::string& problem);

} // namespace host
