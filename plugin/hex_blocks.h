// Settings as text: opaque bytes, compressed and written as "<hex>", hexadecimal digits, "</hex>".
//
// The digits spell a payload: the length of the settings (32 bits, big-endian), then the settings as a zlib
// stream with its header. Byte strings are std::string.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// Settings are a few kilobytes; a length beyond this is not worth asking memory for.
inline constexpr std::size_t kLargestSettings = std::size_t{64} << 20;

/// `bytes` counts only with code 0.
struct SettingsBytes {
    std::int32_t code = 0;
    std::string bytes;
};

/// The payload of settings. -108 above kLargestSettings.
SettingsBytes CompressSettings(std::string_view settings);

/// -50 for a payload of less than 4 bytes; -108, before any memory is taken, when the length it states is
/// above kLargestSettings; -8969 when the compressed bytes can't hold as much, are broken or hold more.
/// Settings that turn out shorter than stated are good; bytes behind the stream are not looked at.
SettingsBytes ExpandSettings(std::string_view payload);

/// Value of a digit of either case.
std::optional<std::uint8_t> HexDigitValue(char digit);

/// Two upper-case digits a byte.
std::string BytesToHex(std::string_view bytes);

SettingsBytes SettingsToHexBlock(std::string_view settings);

/// -50 for a missing marker, anything in front of the first or behind the last, an odd number of digits, and
/// characters that are no digits of either case; else as ExpandSettings.
SettingsBytes HexBlockToSettings(std::string_view text);

} // namespace corvane
