// The library's string resources.
#pragma once

#include "platform/win32/strings.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {

inline constexpr UINT kStringName = 1;
inline constexpr UINT kStringDescription = 2;
inline constexpr UINT kStringVersion = 3;
inline constexpr UINT kFirstPrototypeString = 200; ///< plus the id of the sound function
inline constexpr UINT kStringNoQuickTimeTitle = 23003;
inline constexpr UINT kStringNoQuickTimeMessage = 23004;

/// Where both alerts about QuickTime send people for it.
inline constexpr std::string_view kQuickTimeDownloadPage = "the QuickTime download page";

/// Gives the strings to the platform under the library's module handle.
void RegisterStrings(HINSTANCE instance);

/// A string of the current call block's library; empty when it can't be loaded. 1,023 units at most.
class LoadedString {
public:
    explicit LoadedString(UINT id);

    [[nodiscard]] const char16_t* c_str() const { return units_.data(); }
    [[nodiscard]] std::string Utf8() const;

private:
    std::array<char16_t, 1024> units_;
    std::size_t length_;
};

} // namespace corvane
