// Shortcut files: the Shell Link binary format.
#pragma once

#include "platform/win32/types.h"

#include <optional>
#include <string>
#include <string_view>

namespace win32 {

struct ShellLink {
    std::u16string target;      ///< native path: of a drive, or of a share
    std::u16string description; ///< may be empty
};

/// The bytes of a shortcut file. Attributes, times and size of the target, when it exists, are noted in it.
std::string EncodeShellLink(const ShellLink& link);

/// What a shortcut file of any origin leads to; nullopt for bytes that are none, or name no path.
std::optional<ShellLink> DecodeShellLink(std::string_view bytes);

/// Writes a shortcut file at a native path, in place of a file that is there and not read-only. 0, or the
/// negative number of the failure.
HRESULT SaveShellLink(const ShellLink& link, std::u16string_view path);

} // namespace win32
