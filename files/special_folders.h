// The one-letter codes for folders of the system and the user.
#pragma once

#include "files/file_spec.h"

#include <cstdint>
#include <string_view>

namespace corvane {

/// Answer to an unknown code letter, after the error text has been reported.
inline constexpr std::int32_t kUnknownSpecialFolder = 996;

/// The folder of a code: ".A" application, ".D" desktop, ".R" root of the system volume, ".S" system folder,
/// ".T" temporary folder, ".W" Windows folder, in either case. ".U" and ".V" let the user choose a folder or
/// a file, under the title after a third character ":" (".V:Choose a sound"); the name of a chosen file goes
/// into the result buffer, its folder into `spec`. 0, whether or not the folder exists; -128 on Cancel; 996;
/// or the platform's number. When the desktop can't be found `spec` stays as it is, with 0.
std::int32_t ResolveSpecialFolder(std::string_view text, XFileSpec& spec);

} // namespace corvane
