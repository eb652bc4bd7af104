// Whether a file lies on this machine.
#pragma once

#include <cstdint>
#include <string_view>

namespace corvane {

struct FileLocality {
    std::int32_t code = 0; ///< -35: no native path, a share without its final "\", or a drive letter that
                           ///< stands for a network drive
    bool local = false;
};

/// Asks the drive that a native path (UTF-8) begins with. Shares are other machines': this one has no
/// service that exports its folders under native names.
FileLocality IsLocalFile(std::string_view native_path);

/// The same, but a drive letter that stands for a network drive is as good as a share.
FileLocality IsOnLocalDrive(std::string_view native_path);

} // namespace corvane
