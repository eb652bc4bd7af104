// Types of container streams as people write them: four bytes of UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// nullopt when the text has another length.
std::optional<std::uint32_t> StreamType(std::string_view text);
std::string StreamTypeText(std::uint32_t type);

} // namespace host
