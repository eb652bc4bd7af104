#include "platform/quicktime/image_exporters/index_rows.h"

#include <cstring>

namespace qt {

void PackIndices(std::span<const std::uint8_t> indices, unsigned bits, std::byte* out) {
    if (bits == 8) {
        std::memcpy(out, indices.data(), indices.size());
        return;
    }
    unsigned filled = 0;
    unsigned byte = 0;
    for (const std::uint8_t index : indices) {
        byte = byte << bits | index;
        filled += bits;
        if (filled < 8) continue;
        *out++ = static_cast<std::byte>(byte);
        filled = byte = 0;
    }
    if (filled > 0) *out = static_cast<std::byte>(byte << (8 - filled));
}

} // namespace qt
