#include "platform/quicktime/image_exporters/jpeg_resolution.h"

#include "platform/quicktime/image_codecs/exif_resolution.h"
#include "platform/quicktime/image_codecs/jpeg_segments.h"
#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_codecs/psd_header.h"
#include "platform/quicktime/image_exporters/big_endian.h"
#include "platform/quicktime/image_exporters/jpeg_writer.h"
#include "platform/quicktime/image_exporters/resolution.h"

#include <array>

namespace qt {
namespace {

constexpr std::size_t kJfifSize = 14; ///< without marker and length

class Restating {
public:
    Restating(const ExportSettings& settings, EncodedBytes& out)
        : horizontal_(JpegDots(ResolutionOf(settings).horizontal)),
          vertical_(JpegDots(ResolutionOf(settings).vertical)),
          out_(out) {}

    void TakeSegments(std::size_t begin) {
        const auto source = MemorySource(std::span<const std::byte>(out_).subspan(begin));
        ForEachJpegSegment(*source, [&](const JpegSegment& segment) {
            const auto at = begin + static_cast<std::size_t>(segment.data_at);
            if (at + segment.size > out_.size()) return false;
            Take(segment.marker, at, segment.size);
            return true;
        });
    }

    void AddJfif(std::size_t at) {
        constexpr std::array<unsigned char, 18> kHeader = {0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 1};
        const auto bytes = std::as_bytes(std::span(kHeader));
        out_.insert(out_.begin() + static_cast<std::ptrdiff_t>(at), bytes.begin(), bytes.end());
        ReplaceInJfif(at + 4);
    }

    /// Whether the codec finds it. Damaged data may have headers where they are not seen here.
    [[nodiscard]] bool IsRead(std::size_t begin) const {
        ImageFacts facts;
        const auto source = MemorySource(std::span<const std::byte>(out_).subspan(begin));
        return kJpegCodec.read_facts(*source, facts) == noErr &&
               facts.description.hRes == FixedResolution(horizontal_) &&
               facts.description.vRes == FixedResolution(vertical_);
    }

private:
    void Take(unsigned marker, std::size_t at, std::size_t size) {
        const std::string_view text(reinterpret_cast<const char*>(out_.data() + at), size);
        if (marker == JPEG_APP0 && text.starts_with(kJfifTag) && size >= kJfifSize) {
            ReplaceInJfif(at);
        } else if (marker == JPEG_APP0 + 1 && text.starts_with(kExifTag)) {
            const auto block = std::span(out_).subspan(at, size).subspan(kExifTag.size());
            SetExifResolution(block, horizontal_, vertical_);
        } else if (marker == JPEG_APP0 + 13 && text.starts_with(kImageResourceTag)) {
            ReplaceInResources(at + kImageResourceTag.size(), size - kImageResourceTag.size());
        }
    }

    void ReplaceInJfif(std::size_t at) {
        out_[at + 7] = std::byte{1}; // dots per inch
        Replace16(out_, at + 8, horizontal_);
        Replace16(out_, at + 10, vertical_);
    }

    void ReplaceInResources(std::size_t at, std::size_t size) {
        const std::span<const std::byte> resources = std::span(out_).subspan(at, size);
        const std::span<const std::byte> found = FindImageResource(resources, kPsdResolution);
        if (found.size() < 16) return;
        at += static_cast<std::size_t>(found.data() - resources.data());
        Replace32(out_, at, horizontal_ << 16);
        Replace32(out_, at + 8, vertical_ << 16);
    }

    std::uint32_t horizontal_;
    std::uint32_t vertical_;
    EncodedBytes& out_;
};

} // namespace

bool RestateJpegResolution(const ExportSettings& settings, bool takes_jfif, std::size_t begin,
                           EncodedBytes& out) {
    Restating restating(settings, out);
    restating.TakeSegments(begin);
    if (restating.IsRead(begin)) return true;
    if (takes_jfif) restating.AddJfif(begin + 2);
    return restating.IsRead(begin);
}

} // namespace qt
