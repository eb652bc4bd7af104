#include "platform/quicktime/image_codecs/described_image.h"

#include "platform/quicktime/image_codecs/pict_pixels.h"

#include <algorithm>

namespace qt {
namespace {

constexpr std::int16_t kGreyDepths = 32; ///< added to the bits of grey

/// The first sixteen colours of the platform, white to black.
constexpr std::array<std::uint32_t, 16> kSixteenColours = {
    0xFFFFFFFF, 0xFFFCF305, 0xFFFF6402, 0xFFDD0806, 0xFFF20884, 0xFF4600A5, 0xFF0000D4, 0xFF02ABEA,
    0xFF1FB714, 0xFF006411, 0xFF562C05, 0xFF90713A, 0xFFC0C0C0, 0xFF808080, 0xFF404040, 0xFF000000};

/// The platform's 256 colours: a cube of six steps without its black, then ten steps each of red, green,
/// blue and grey that the cube lacks, then black.
Palette SystemColours() {
    Palette palette{};
    std::size_t next = 0;
    for (std::uint32_t i = 0; i < 215; ++i) {
        palette[next++] = Pixel(255 - i / 36 * 51, 255 - i / 6 % 6 * 51, 255 - i % 6 * 51);
    }
    for (std::uint32_t channel = 0; channel < 4; ++channel) {
        for (std::uint32_t step = 14; step > 0; --step) {
            if (step % 3 == 0) continue;
            const std::uint32_t value = step * 17;
            palette[next++] =
                channel == 3 ? Pixel(value, value, value) : kBlack | value << (16 - 8 * channel);
        }
    }
    palette[next] = kBlack;
    return palette;
}

Palette GreyRamp(unsigned bits) {
    Palette palette{};
    const std::uint32_t last = (1U << bits) - 1;
    for (std::uint32_t i = 0; i <= last; ++i) {
        const std::uint32_t value = 255 - i * 255 / last;
        palette[i] = Pixel(value, value, value);
    }
    return palette;
}

Palette ColoursOf(const DescribedImage& described, unsigned bits, bool is_grey) {
    if (is_grey || bits <= 2) {
        Palette ramp = GreyRamp(bits);
        if (is_grey || described.colours.empty()) return ramp;
    }
    Palette palette{};
    if (!described.colours.empty()) {
        palette.fill(kBlack);
        PictCursor cursor(described.colours);
        ReadColourTable(cursor, palette);
    } else if (bits == 4) {
        std::ranges::copy(kSixteenColours, palette.begin());
    } else {
        palette = SystemColours();
    }
    return palette;
}

void PlainRow(const std::byte* row, unsigned bits, const Palette& palette, std::int32_t count,
              std::uint32_t* pixels) {
    switch (bits) {
    case 16:
        for (std::int32_t x = 0; x < count; ++x)
            pixels[x] = PixelFrom555(BigEndian16(row + std::ptrdiff_t{2} * x));
        break;
    case 24: PixelsFromRgb(row, count, pixels); break;
    case 32:
        for (std::int32_t x = 0; x < count; ++x) pixels[x] = BigEndian32(row + std::ptrdiff_t{4} * x);
        break;
    default: PixelsFromIndices(row, bits, palette, count, pixels);
    }
}

void MakeOpaque(PixelImage& image) {
    for (std::int32_t y = 0; y < image.height(); ++y) {
        for (std::int32_t x = 0; x < image.width(); ++x) image.Row(y)[x] |= kBlack;
    }
}

/// Rows from top to bottom, as long as the data's size says.
ComponentResult DecodePlainRows(const DescribedImage& described, DataSource& data, PixelImage& image) {
    const std::int16_t depth = described.description.depth;
    const bool is_grey = depth > kGreyDepths && depth <= kGreyDepths + 8;
    const auto bits = static_cast<unsigned>(is_grey ? depth - kGreyDepths : depth);
    constexpr std::array<unsigned, 7> kBits = {1, 2, 4, 8, 16, 24, 32};
    if (std::ranges::find(kBits, bits) == kBits.end()) return codecBadDataErr;
    const auto width = static_cast<std::uint32_t>(described.description.width);
    const auto height = static_cast<std::uint32_t>(described.description.height);
    if (const auto code = AllocateFor(described.description, data, std::max(8 / bits, 1U), image);
        code != noErr)
        return code;

    const std::size_t least = (std::size_t{width} * bits + 7) / 8;
    const std::uint64_t told = (described.data_size > 0 ? described.data_size : data.GetSize()) / height;
    const auto row_bytes = static_cast<std::size_t>(std::clamp<std::uint64_t>(told, least, least + 64));
    const Palette palette = bits <= 8 ? ColoursOf(described, bits, is_grey) : Palette{};
    image.is_grey = is_grey;
    std::uint32_t alphas = 0;
    std::vector<std::byte> row(row_bytes);
    ByteReader reader(data, 0);
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::size_t count = reader.Read(row);
        if (count == 0 && y == 0) return codecBadDataErr;
        if (count < least) {
            WhitenRows(image, y, image.height());
            break;
        }
        PlainRow(row.data(), bits, palette, image.width(), image.Row(y));
        for (std::int32_t x = 0; bits == 32 && x < image.width(); ++x) alphas |= image.Row(y)[x];
    }
    image.has_alpha = Alpha(alphas) != 0;
    if (bits == 32 && !image.has_alpha) MakeOpaque(image); // the fourth byte holds nothing
    return noErr;
}

} // namespace

bool ReadImageDescription(std::span<const std::byte> bytes, DescribedImage& image) {
    constexpr std::size_t kNameAt = 50;
    if (bytes.size() < kImageDescriptionSize) return false;
    ImageDescription& description = image.description;
    const auto word_at = [&](std::size_t at) { return static_cast<std::int16_t>(BigEndian16(&bytes[at])); };
    description.cType = BigEndian32(&bytes[4]);
    description.spatialQuality = static_cast<std::int32_t>(BigEndian32(&bytes[28]));
    description.width = word_at(32);
    description.height = word_at(34);
    description.hRes = FixedResolution(BigEndian32(&bytes[36]) / 65'536.0);
    description.vRes = FixedResolution(BigEndian32(&bytes[40]) / 65'536.0);
    image.data_size = BigEndian32(&bytes[44]);
    for (std::size_t i = 0; i < description.name.size(); ++i) {
        description.name[i] = std::to_integer<unsigned char>(bytes[kNameAt + i]);
    }
    description.name[0] = std::min<unsigned char>(description.name[0], 31);
    description.depth = word_at(82);
    const bool has_colours = word_at(84) == 0;
    if (has_colours) {
        const auto behind = bytes.subspan(kImageDescriptionSize);
        image.colours.assign(behind.begin(), behind.end());
    }
    return description.width > 0 && description.height > 0;
}

ComponentResult DecodeDescribedImage(const DescribedImage& described, DataSource& data, PixelImage& image) {
    if (described.description.cType == Code("raw ")) return DecodePlainRows(described, data, image);
    const ImageCodec* codec = FindImageCodec(described.description.cType);
    const bool nests = codec == &kPictCodec || codec == &kQuickTimeImageCodec;
    if (codec == nullptr || codec->decode == nullptr || nests) return codecBadDataErr;
    return codec->decode(data, 1, image);
}

} // namespace qt
