// The segments of JPEG data in front of the first scan (ITU-T T.81, B.1.1).
#pragma once

#include "platform/quicktime/image_codecs/codec.h"

#include <array>
#include <string_view>

namespace qt {

/// What the data of application segments begins with, whose content others define: JFIF 1.02 (APP0), EXIF and
/// XMP (APP1), image resources (APP13).
inline constexpr std::string_view kJfifTag{"JFIF\0", 5};
inline constexpr std::string_view kExifTag{"Exif\0\0", 6};
inline constexpr std::string_view kXmpTag{"http://ns.adobe.com/xap/1.0/\0", 29};
inline constexpr std::string_view kImageResourceTag{"Photoshop 3.0\0", 14};

struct JpegSegment {
    unsigned marker = 0;       ///< its second byte
    std::uint64_t data_at = 0; ///< behind the length
    std::size_t size = 0;      ///< of the data
};

/// Hands each segment to `take`, as long as that answers true. Data that is no JPEG has none.
template <class Take>
void ForEachJpegSegment(DataSource& source, Take take) {
    constexpr unsigned kScan = 0xDA;
    constexpr unsigned kEndOfImage = 0xD9;
    constexpr unsigned kFill = 0xFF;
    std::uint64_t offset = 2;
    std::array<std::byte, 4> head;
    while (source.Read(offset, head) == head.size() && head[0] == std::byte{0xFF}) {
        const auto marker = std::to_integer<unsigned>(head[1]);
        if (marker == kFill) {
            ++offset;
            continue;
        }
        const std::size_t size = BigEndian16(head.data() + 2);
        if (marker == kScan || marker == kEndOfImage || size < 2) break;
        if (!take(JpegSegment{marker, offset + head.size(), size - 2})) break;
        offset += 2 + size;
    }
}

} // namespace qt
