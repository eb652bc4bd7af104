// Photoshop documents: the merged image behind the layers, a plane a channel, in plain or packed rows.
//
// A document with transparency is merged onto white, and its colours are as seen there; other programs store
// the colours themselves. The pixels tell: none that was laid on white is darker than what shines through.
#include "platform/quicktime/image_codecs/psd_header.h"

#include "platform/quicktime/image_codecs/lab_colour.h"
#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_codecs/psd_channels.h"

#include <algorithm>
#include <bit>

namespace qt {
namespace {

constexpr std::array<OSType, 5> kTypes = {Code("8BPS"), Code("8bps"), Code("PSD "), Code("psd "),
                                          Code("PSB ")};

using Plane = std::vector<std::uint8_t>; ///< a row of a channel, 8 bits a sample

/// Rows of samples as 8 bits each; indices and bits stay what they are.
void ToEightBits(const std::byte* row, unsigned depth, Plane& plane) {
    switch (depth) {
    case 1:
        for (std::size_t x = 0; x < plane.size(); ++x) {
            plane[x] = (std::to_integer<unsigned>(row[x / 8]) >> (7 - x % 8) & 1) != 0 ? 0 : 255;
        }
        break;
    case 8: std::memcpy(plane.data(), row, plane.size()); break;
    case 16:
        for (std::size_t x = 0; x < plane.size(); ++x) {
            plane[x] = static_cast<std::uint8_t>(EightOfSixteenBits(BigEndian16(row + 2 * x)));
        }
        break;
    default:
        for (std::size_t x = 0; x < plane.size(); ++x) {
            const auto sample = std::bit_cast<float>(BigEndian32(row + 4 * x));
            plane[x] =
                static_cast<std::uint8_t>(sample > 0.0F ? std::min(sample, 1.0F) * 255.0F + 0.5F : 0.0F);
        }
    }
}

/// Stored inks are inverted: 255 is none.
std::uint32_t PixelFromInks(std::uint32_t cyan, std::uint32_t magenta, std::uint32_t yellow,
                            std::uint32_t black) {
    const auto with_black = [black](std::uint32_t ink) { return (ink * black + 127) / 255; };
    return Pixel(with_black(cyan), with_black(magenta), with_black(yellow));
}

void PaintRow(const PsdHeader& header, const std::vector<Plane>& planes, std::int32_t count,
              std::uint32_t* pixels) {
    const auto paint = [&](auto pixel_at) {
        for (std::int32_t x = 0; x < count; ++x) pixels[x] = pixel_at(static_cast<std::size_t>(x));
    };
    const std::size_t colours = header.ColourChannels();
    // One that is not there is not read either.
    const auto plane = [&](std::size_t colour) { return planes[std::min(colour, colours - 1)].data(); };
    const std::uint8_t* const first = plane(0);
    const std::uint8_t* const second = plane(1);
    const std::uint8_t* const third = plane(2);
    const std::uint8_t* const fourth = plane(3);
    switch (colours) {
    case 1:
        if (header.mode == PsdHeader::kIndexed) {
            paint([&](std::size_t x) { return header.palette[first[x]]; });
        } else {
            paint([&](std::size_t x) { return Pixel(first[x], first[x], first[x]); });
        }
        break;
    case 3:
        if (header.mode == PsdHeader::kLab) {
            static const LabColours kColours;
            paint([&](std::size_t x) { return kColours.PixelOf(first[x], second[x], third[x]); });
        } else {
            paint([&](std::size_t x) { return Pixel(first[x], second[x], third[x]); });
        }
        break;
    default: paint([&](std::size_t x) { return PixelFromInks(first[x], second[x], third[x], fourth[x]); });
    }
    if (!header.has_alpha) return;
    const std::uint8_t* const alpha = planes[colours].data();
    for (std::int32_t x = 0; x < count; ++x) {
        pixels[x] = (pixels[x] & 0x00FF'FFFF) | std::uint32_t{alpha[x]} << 24;
    }
}

bool IsOnWhite(const PixelImage& image) {
    for (std::int32_t y = 0; y < image.height(); ++y) {
        for (std::int32_t x = 0; x < image.width(); ++x) {
            const std::uint32_t pixel = image.Row(y)[x];
            const std::uint32_t darkest = std::min({Red(pixel), Green(pixel), Blue(pixel)});
            if (darkest + Alpha(pixel) + 1 < 255) return false;
        }
    }
    return true;
}

void TakeFromWhite(PixelImage& image) {
    for (std::int32_t y = 0; y < image.height(); ++y) {
        std::uint32_t* row = image.Row(y);
        for (std::int32_t x = 0; x < image.width(); ++x) {
            const std::uint32_t alpha = Alpha(row[x]);
            if (alpha == 0 || alpha == 255) continue;
            const auto own = [alpha](std::uint32_t seen) {
                const std::uint32_t white = 255 * (255 - alpha);
                const std::uint32_t scaled = seen * 255;
                return scaled > white ? std::min((scaled - white + alpha / 2) / alpha, 255U) : 0U;
            };
            row[x] = Pixel(own(Red(row[x])), own(Green(row[x])), own(Blue(row[x])), alpha);
        }
    }
}

bool Sniff(std::span<const std::byte> head) {
    return head.size() >= 6 && BigEndian32(head.data()) == Code("8BPS") &&
           (BigEndian16(&head[4]) == 1 || BigEndian16(&head[4]) == 2);
}

ComponentResult ReadHeader(DataSource& source, PsdHeader& header) {
    return ReadPsdHeader(source, header) ? noErr : codecBadDataErr;
}

/// Of deflated planes that are all alike.
std::uint32_t MostPixelsOfByte(const PsdHeader& header) {
    constexpr std::uint32_t kMostSamples = 1032;
    return header.depth == 1 ? 8 * kMostSamples : kMostSamples;
}

ComponentResult Paint(DataSource& source, const PsdHeader& header, PixelImage& image) {
    PsdChannels channels;
    if (const auto code = OpenPsdChannels(source, header, channels); code != noErr) return code;
    image.has_alpha = header.has_alpha;
    image.is_grey = header.IsGrey();

    // Of data that breaks off, channels behind the first may lack: they are as white paper has them.
    std::vector<Plane> planes(header.PaintedChannels(), Plane(header.width, 255));
    for (std::int32_t y = 0; y < image.height(); ++y) {
        for (std::size_t i = 0; i < channels.painted.size(); ++i) {
            const std::byte* row = channels.painted[i].Next();
            if (row != nullptr) {
                ToEightBits(row, header.depth, planes[i]);
            } else if (i > 0) {
                std::ranges::fill(planes[i], std::uint8_t{255});
            } else if (y == 0) {
                return codecBadDataErr;
            } else {
                WhitenRows(image, y, image.height());
                return noErr;
            }
        }
        PaintRow(header, planes, image.width(), image.Row(y));
    }
    if (header.has_alpha && IsOnWhite(image)) TakeFromWhite(image);
    return noErr;
}

ComponentResult ReadMetadata(DataSource& source, std::vector<MetadataItem>& items) {
    PsdHeader header;
    if (const auto code = ReadHeader(source, header); code != noErr) return code;
    constexpr std::uint64_t kMostResources = std::uint64_t{64} << 20;
    std::vector<std::byte> resources(std::min<std::uint64_t>(header.resources_size, kMostResources));
    resources.resize(source.Read(header.resources_at, resources));
    AppendIptcItems(FindImageResource(resources, kIptcResource), items);
    const std::span<const std::byte> packet = FindImageResource(resources, kXmpResource);
    AppendXmpItems({reinterpret_cast<const char*>(packet.data()), packet.size()}, items);
    return noErr;
}

using Codec = HeaderCodec<PsdHeader, ReadHeader, DescribePsd, MostPixelsOfByte, Paint>;

} // namespace

const ImageCodec kPhotoshopCodec = {kTypes, Sniff, Codec::ReadFacts, true, Codec::Decode, ReadMetadata};

} // namespace qt
