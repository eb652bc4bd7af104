// Which host application this is, and whether the plug-in works in it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {

inline constexpr std::int16_t kOldestInterfaceVersion = 50;
inline constexpr std::int16_t kNewestInterfaceVersion = 255;

/// Head of the file version of the host's executable: "8.5v2", "10.0v1". Empty when it has no version.
std::string ReadHostVersionText();

/// 100 times the version plus the number behind the "v": 859 of "8.5v9" with interface 51, 703 of "7.0v3"
/// with interface 50. 0 for every version that is not known.
std::int16_t ClassifyHostVersion(std::int16_t interface_version, std::string_view text);

/// Versions 7, 8.0 to 8.5, 9 and 10.0 from their first release on.
bool AcceptsHostVersion(std::int16_t version_code);

/// What the latest start-up learned of its host.
struct HostVersion {
    std::int16_t interface_version = 0; ///< of an accepted host only
    std::int16_t code = 0;
    std::string text;
};

HostVersion& CurrentHostVersion();

} // namespace corvane
