// Basic types and numbers of the media layer.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

using OSErr = std::int16_t;
using OSType = std::uint32_t;         ///< four-character code, first character in the most significant byte
using ComponentResult = std::int32_t; ///< 0, an error in the classic numbering, or kBadComponentSelector
using Fixed = std::int32_t;           ///< signed 16.16
using Size = std::ptrdiff_t;          ///< bytes in memory
using Str31 = std::array<unsigned char, 32>; ///< length byte, then the characters

/// `right` and `bottom` are one past the last column and row.
struct Rect {
    std::int16_t top = 0;
    std::int16_t left = 0;
    std::int16_t bottom = 0;
    std::int16_t right = 0;
};

inline constexpr OSErr noErr = 0;
inline constexpr OSErr ioErr = -36; ///< reading failed, or a transfer broke off
inline constexpr OSErr eofErr = -39;
inline constexpr OSErr tmfoErr = -42; ///< too many files open
inline constexpr OSErr fnfErr = -43;  ///< no such file, folder on the way, or page (404, 410)
inline constexpr OSErr paramErr = -50;
inline constexpr OSErr permErr = -54;            ///< no permission to read
inline constexpr OSErr memFullErr = -108;        ///< no memory, or more data than a limit allows
inline constexpr OSErr notAFileErr = -1302;      ///< a folder, device, pipe or socket
inline constexpr OSErr cantFindHandler = -2003;  ///< nothing reads this kind of data or reference
inline constexpr OSErr cantOpenHandler = -2004;  ///< the server can't be reached, refuses or is too slow
inline constexpr OSErr badComponentType = -2005; ///< no component of this type and subtype
inline constexpr OSErr invalidDataRef = -2012;
inline constexpr OSErr codecUnimpErr = -8962;
inline constexpr OSErr codecSizeErr = -8963; ///< dimensions beyond qt::kMaximumDimension
inline constexpr OSErr codecBadDataErr = -8969;

/// Given for an instance that is null or of another type.
inline constexpr ComponentResult kBadComponentInstance = static_cast<ComponentResult>(0x80008001U);

/// What a component answers to an operation that it does not have.
inline constexpr ComponentResult kBadComponentSelector = static_cast<ComponentResult>(0x80008002U);

namespace qt {

/// Four-character code of four characters: Code("jpeg").
constexpr OSType Code(const char (&characters)[5]) {
    OSType code = 0;
    for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(characters[i]);
    return code;
}

/// A text as a length-prefixed name, cut at 31 characters.
constexpr Str31 Name(std::string_view text) {
    Str31 name{};
    text = text.substr(0, name.size() - 1);
    name[0] = static_cast<unsigned char>(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) name[i + 1] = static_cast<unsigned char>(text[i]);
    return name;
}

} // namespace qt
