#include "plugin/hex_blocks.h"

#include "platform/quicktime/types.h"
#include "plugin/errors.h"

#include <zlib.h>

namespace corvane {

namespace {

constexpr std::string_view kOpening = "<hex>";
constexpr std::string_view kClosing = "</hex>";
constexpr std::size_t kLengthBytes = 4;

/// Deflate spends at least two bits on a copy of at most 258 bytes.
constexpr std::size_t kLargestExpansion = 1032;

SettingsBytes Failed(std::int32_t code) {
    return {code, {}};
}

Bytef* AsZlib(char* bytes) {
    return reinterpret_cast<Bytef*>(bytes);
}
const Bytef* AsZlib(const char* bytes) {
    return reinterpret_cast<const Bytef*>(bytes);
}

std::int32_t CodeOf(int zlib_code) {
    if (zlib_code == Z_OK) return 0;
    return zlib_code == Z_MEM_ERROR ? kErrorOutOfMemory : codecBadDataErr;
}

} // namespace

SettingsBytes CompressSettings(std::string_view settings) {
    if (settings.size() > kLargestSettings) return Failed(kErrorOutOfMemory);
    uLongf size = compressBound(settings.size());
    SettingsBytes payload{0, std::string(kLengthBytes + size, '\0')};
    for (std::size_t i = 0; i < kLengthBytes; ++i) {
        payload.bytes[i] = static_cast<char>(settings.size() >> (24 - 8 * i));
    }
    payload.code = CodeOf(compress(AsZlib(payload.bytes.data() + kLengthBytes), &size,
                                   AsZlib(settings.data()), settings.size()));
    payload.bytes.resize(kLengthBytes + size);
    return payload;
}

SettingsBytes ExpandSettings(std::string_view payload) {
    if (payload.size() < kLengthBytes) return Failed(kErrorWrongParameter);
    std::size_t length = 0;
    for (const char byte : payload.substr(0, kLengthBytes))
        length = length << 8 | static_cast<unsigned char>(byte);
    const std::string_view compressed = payload.substr(kLengthBytes);
    if (length > kLargestSettings) return Failed(kErrorOutOfMemory);
    if (length > compressed.size() * kLargestExpansion) return Failed(codecBadDataErr);

    SettingsBytes settings{0, std::string(length, '\0')};
    uLongf size = length;
    settings.code = CodeOf(
        uncompress(AsZlib(settings.bytes.data()), &size, AsZlib(compressed.data()), compressed.size()));
    settings.bytes.resize(size);
    return settings;
}

std::optional<std::uint8_t> HexDigitValue(char digit) {
    if (digit >= '0' && digit <= '9') return static_cast<std::uint8_t>(digit - '0');
    if (digit >= 'A' && digit <= 'F') return static_cast<std::uint8_t>(digit - 'A' + 10);
    if (digit >= 'a' && digit <= 'f') return static_cast<std::uint8_t>(digit - 'a' + 10);
    return std::nullopt;
}

std::string BytesToHex(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string digits;
    digits.reserve(2 * bytes.size());
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        digits += kDigits[value >> 4];
        digits += kDigits[value & 0xFU];
    }
    return digits;
}

SettingsBytes SettingsToHexBlock(std::string_view settings) {
    SettingsBytes block = CompressSettings(settings);
    if (block.code != 0) return block;
    block.bytes = BytesToHex(block.bytes).insert(0, kOpening).append(kClosing);
    return block;
}

SettingsBytes HexBlockToSettings(std::string_view text) {
    if (!text.starts_with(kOpening)) return Failed(kErrorWrongParameter);
    text.remove_prefix(kOpening.size());
    if (!text.ends_with(kClosing)) return Failed(kErrorWrongParameter);
    text.remove_suffix(kClosing.size());
    if (text.size() % 2 != 0) return Failed(kErrorWrongParameter);

    std::string payload;
    payload.reserve(text.size() / 2);
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const auto high = HexDigitValue(text[i]);
        const auto low = HexDigitValue(text[i + 1]);
        if (!high || !low) return Failed(kErrorWrongParameter);
        payload += static_cast<char>(*high << 4 | *low);
    }
    return ExpandSettings(payload);
}

} // namespace corvane
