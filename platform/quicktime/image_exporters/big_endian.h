#pragma once

#include "platform/quicktime/image_exporters/exporter.h"

namespace qt {

inline void Append16(EncodedBytes& out, std::uint32_t value) {
    out.push_back(static_cast<std::byte>(value >> 8));
    out.push_back(static_cast<std::byte>(value));
}

inline void Append32(EncodedBytes& out, std::uint32_t value) {
    Append16(out, value >> 16);
    Append16(out, value);
}

/// Puts a value over bytes that are there.
inline void Replace16(EncodedBytes& out, std::size_t at, std::uint32_t value) {
    out[at] = static_cast<std::byte>(value >> 8);
    out[at + 1] = static_cast<std::byte>(value);
}

inline void Replace32(EncodedBytes& out, std::size_t at, std::uint32_t value) {
    Replace16(out, at, value >> 16);
    Replace16(out, at + 2, value);
}

} // namespace qt
