#include "platform/quicktime/movies/riff_chunks.h"

#include "platform/quicktime/movies/atoms.h"

#include <algorithm>
#include <array>

namespace qt {

std::optional<RiffChunk> FindRiffChunk(DataSource& data, OSType type) {
    std::array<std::byte, 12> start{};
    if (data.Read(0, start) != start.size()) return std::nullopt;
    const OSType file_type = BigEndian32(start, 0);
    const bool big_endian = file_type == Code("RIFX");
    if (!big_endian && file_type != Code("RIFF") && file_type != Code("RF64")) return std::nullopt;
    std::array<std::byte, 8> header{};
    for (std::uint64_t offset = start.size(); data.Read(offset, header) == header.size();) {
        offset += header.size();
        const std::uint64_t size = big_endian ? BigEndian32(header, 4) : LittleEndian32(header, 4);
        if (BigEndian32(header, 0) == type)
            return RiffChunk{offset, std::min(size, data.GetSize() - offset), big_endian};
        offset += size + size % 2;
    }
    return std::nullopt;
}

} // namespace qt
