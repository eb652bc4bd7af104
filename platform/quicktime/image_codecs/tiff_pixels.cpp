// TIFF samples as pixels: strips row by row, tiles one by one, each sample's plane for itself where they are
// stored so.
#include "platform/quicktime/image_codecs/lab_colour.h"
#include "platform/quicktime/image_codecs/raster.h"
#include "platform/quicktime/image_codecs/tiff_file.h"
#include "platform/quicktime/image_codecs/tiff_strips.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace qt {
namespace {

constexpr std::size_t kPadding = 4; ///< behind a row, so that its last sample can be read as a whole word
constexpr tmsize_t kMostTileBytes = tmsize_t{1} << 28; // and of a row

/// An unsigned sample of up to 16 bits anywhere in a row, whose words the library has put into native order.
std::uint32_t SampleAt(const std::byte* row, std::size_t sample, unsigned bits) {
    if (bits == 8) return std::to_integer<std::uint32_t>(row[sample]);
    if (bits == 16) {
        std::uint16_t value = 0;
        std::memcpy(&value, row + sample * 2, sizeof value);
        return value;
    }
    const std::size_t bit = sample * bits;
    const std::byte* at = row + bit / 8;
    const std::uint32_t word = BigEndian16(at) << 8 | std::to_integer<std::uint32_t>(at[2]);
    return word >> (24 - bits - bit % 8) & ((1U << bits) - 1);
}

/// A number of 16 bits (IEEE 754 binary16), as a sample needs it: what is negative or no number is 0.
float HalfNumber(std::uint16_t bits) {
    constexpr int kInfinity = 31 << 10;
    if (bits > kInfinity) return 0.0F;
    const int exponent = bits >> 10;
    const int mantissa = bits & 1'023;
    return std::ldexp(static_cast<float>(exponent == 0 ? mantissa : mantissa + 1'024),
                      std::max(exponent, 1) - 25);
}

/// Turns stored rows into pixels.
class RowPainter {
public:
    explicit RowPainter(TIFF* tiff, const TiffLayout& layout) : layout_(layout) {
        const bool is_palette = layout.photometric == PHOTOMETRIC_PALETTE;
        const std::size_t count = layout.bits <= 16 ? std::size_t{1} << layout.bits : 0;
        if (layout.bits <= 8 || is_palette) TakeColours(tiff, count);
        if (layout.IsLab()) {
            const float* white = nullptr;
            g_tiff->GetField(tiff, TIFFTAG_WHITEPOINT, &white);
            if (white == nullptr) {
                lab_.emplace();
            } else {
                lab_.emplace(white[0], white[1]);
            }
        }
        for (std::size_t value = 1; layout.bits < 8 && value < count; ++value) {
            scaled_[value] =
                static_cast<std::byte>((std::size_t{255} * value + (count - 1) / 2) / (count - 1));
        }
    }

    [[nodiscard]] bool IsGrey() const {
        return layout_.photometric == PHOTOMETRIC_PALETTE ? palette_is_grey_ : layout_.colours == 1;
    }

    /// A row in which the samples of each pixel stand together.
    void Paint(const std::byte* row, std::int32_t count, std::uint32_t* pixels) const {
        const unsigned bits = layout_.bits;
        const bool has_narrow_bits = bits == 1 || bits == 2 || bits == 4 || bits == 8;
        const bool is_rgb = layout_.colours == 3 && bits == 8 && !lab_;
        if (layout_.colours == 1 && layout_.samples == 1 && has_narrow_bits) {
            PixelsFromIndices(row, bits, narrow_palette_, count, pixels);
        } else if (is_rgb && layout_.samples == 3) {
            PixelsFromRgb(row, count, pixels);
        } else if (is_rgb && layout_.samples == 4) {
            PaintRgba(row, count, pixels);
        } else {
            for (std::uint16_t sample = 0; sample < StoredSamples(); ++sample) {
                Place(row, layout_.samples, sample, count, pixels);
            }
            FinishRow(count, pixels);
        }
    }

    /// A row of one sample of each pixel. FinishRow makes colours of the row when it has all samples.
    void PaintPlane(const std::byte* row, std::uint16_t sample, std::int32_t count,
                    std::uint32_t* pixels) const {
        Place(row, 1, sample, count, pixels, 0);
    }

    void FinishRow(std::int32_t count, std::uint32_t* pixels) const {
        if (layout_.photometric == PHOTOMETRIC_PALETTE) {
            for (std::int32_t x = 0; x < count; ++x) pixels[x] = colours_[pixels[x]];
        } else if (layout_.colours == 1) {
            const std::uint32_t inverted = layout_.photometric == PHOTOMETRIC_MINISWHITE ? 255 : 0;
            for (std::int32_t x = 0; x < count; ++x) {
                pixels[x] = (pixels[x] & 0xFF00'0000) | ((pixels[x] & 0xFF) ^ inverted) * 0x01'0101;
            }
        } else if (layout_.colours == 4) {
            for (std::int32_t x = 0; x < count; ++x) pixels[x] = FromInks(pixels[x]);
        } else if (lab_) {
            for (std::int32_t x = 0; x < count; ++x) {
                const std::uint32_t stored = pixels[x];
                pixels[x] = (lab_->PixelOf(Red(stored), Green(stored), Blue(stored)) & 0x00FF'FFFF) |
                            (stored & 0xFF00'0000);
            }
        }
        FinishAlpha(count, pixels);
    }

    /// How many samples of a pixel matter.
    [[nodiscard]] std::uint16_t StoredSamples() const {
        return static_cast<std::uint16_t>(layout_.colours + (layout_.has_alpha ? 1 : 0));
    }

private:
    void TakeColours(TIFF* tiff, std::size_t count) {
        std::array<std::uint16_t*, 3> maps{};
        colours_.resize(std::max(count, narrow_palette_.size()), kBlack);
        if (layout_.photometric != PHOTOMETRIC_PALETTE) {
            const std::uint32_t inverted = layout_.photometric == PHOTOMETRIC_MINISWHITE ? 255 : 0;
            for (std::uint32_t i = 0; i < count; ++i) {
                const auto grey =
                    static_cast<std::uint32_t>((std::size_t{255} * i + (count - 1) / 2) / (count - 1)) ^
                    inverted;
                colours_[i] = Pixel(grey, grey, grey);
            }
        } else if (g_tiff->GetField(tiff, TIFFTAG_COLORMAP, maps.data(), &maps[1], &maps[2]) != 0) {
            const bool has_words = std::ranges::any_of(maps, [&](const std::uint16_t* map) {
                return std::any_of(map, map + count, [](std::uint16_t value) { return value > 255; });
            });
            const auto byte = [&](std::uint32_t value) {
                return has_words ? EightOfSixteenBits(value) : value;
            };
            for (std::size_t i = 0; i < count; ++i) {
                colours_[i] = Pixel(byte(maps[0][i]), byte(maps[1][i]), byte(maps[2][i]));
                palette_is_grey_ = palette_is_grey_ && maps[0][i] == maps[1][i] && maps[1][i] == maps[2][i];
            }
        }
        std::copy_n(colours_.begin(), narrow_palette_.size(), narrow_palette_.begin());
    }

    [[nodiscard]] std::byte Scaled(std::uint32_t value) const {
        const unsigned bits = layout_.bits;
        if (bits < 8) return scaled_[value];
        if (bits == 8) return static_cast<std::byte>(value);
        if (bits == 16) return static_cast<std::byte>(EightOfSixteenBits(value));
        const std::uint32_t most = (1U << bits) - 1;
        return static_cast<std::byte>((std::size_t{255} * value + most / 2) / most);
    }

    /// An integer's highest 8 bits.
    static std::byte WideInteger(const std::byte* row, std::size_t sample) {
        std::uint32_t value = 0;
        std::memcpy(&value, row + sample * 4, sizeof value);
        return static_cast<std::byte>(value >> 24);
    }

    /// A number from 0 to 1 scaled to 255; of L*a*b*, 0 to 100 and the numbers around 0.
    [[nodiscard]] std::byte NumberSample(const std::byte* row, std::size_t place,
                                         std::uint16_t sample) const {
        const auto stored = [&]<class Value>(Value value) {
            std::memcpy(&value, row + place * sizeof value, sizeof value);
            return value;
        };
        const double number = layout_.bits == 16   ? HalfNumber(stored(std::uint16_t{}))
                              : layout_.bits == 32 ? stored(float{})
                                                   : stored(double{});
        const double scaled = !lab_ || sample == 3 ? number * 255.0
                              : sample == 0        ? number * 2.55
                                                   : number + 128.0;
        return scaled > 0.0 ? static_cast<std::byte>(std::lround(std::min(scaled, 255.0))) : std::byte{0};
    }

    void Place(const std::byte* row, std::size_t step, std::uint16_t sample, std::int32_t count,
               std::uint32_t* pixels) const {
        Place(row, step, sample, count, pixels, sample);
    }

    /// Puts the sample of each pixel, which stands `step` samples behind that of the pixel before it, into
    /// the byte of its colour; indices into the low bits.
    void Place(const std::byte* row, std::size_t step, std::uint16_t sample, std::int32_t count,
               std::uint32_t* pixels, std::size_t at) const {
        if (layout_.photometric == PHOTOMETRIC_PALETTE) {
            for (std::int32_t x = 0; x < count; ++x, at += step) pixels[x] = SampleAt(row, at, layout_.bits);
            return;
        }
        auto* bytes = reinterpret_cast<std::byte*>(pixels) + ByteOf(sample);
        const auto place = [&](auto sample_at) {
            for (std::int32_t x = 0; x < count; ++x, at += step) bytes[std::ptrdiff_t{x} * 4] = sample_at();
        };
        if (layout_.is_float) {
            place([&] { return NumberSample(row, at, sample); });
        } else if (layout_.bits == 32) {
            place([&] { return WideInteger(row, at); });
        } else if (layout_.IsSignedLab() && (sample == 1 || sample == 2)) {
            const std::uint32_t sign = 1U << (layout_.bits - 1);
            place([&] { return Scaled(SampleAt(row, at, layout_.bits) ^ sign); });
        } else if (layout_.bits == 8) {
            place([&] { return row[at]; });
        } else {
            place([&] { return Scaled(SampleAt(row, at, layout_.bits)); });
        }
    }

    /// Byte of a pixel: blue (and grey) first. The four inks lie where red, green, blue and alpha would.
    [[nodiscard]] std::size_t ByteOf(std::uint16_t sample) const {
        constexpr std::array<std::size_t, 4> kBytes = {2, 1, 0, 3};
        if (layout_.colours == 1) return sample == 0 ? 0 : 3;
        return kBytes[sample];
    }

    void PaintRgba(const std::byte* row, std::int32_t count, std::uint32_t* pixels) const {
        std::memcpy(pixels, row, static_cast<std::size_t>(count) * 4);
        for (std::int32_t x = 0; x < count; ++x) {
            const std::uint32_t stored = pixels[x];
            pixels[x] = (stored & 0xFF00'FF00) | (stored >> 16 & 0xFF) | (stored & 0xFF) << 16;
        }
        FinishAlpha(count, pixels);
    }

    void FinishAlpha(std::int32_t count, std::uint32_t* pixels) const {
        if (!layout_.has_alpha) {
            for (std::int32_t x = 0; x < count; ++x) pixels[x] |= 0xFF00'0000;
        } else if (layout_.is_multiplied) {
            for (std::int32_t x = 0; x < count; ++x) pixels[x] = Divided(pixels[x]);
        }
    }

    static std::uint32_t FromInks(std::uint32_t inks) {
        const std::uint32_t paper = 255 - Alpha(inks);
        const auto light = [&](std::uint32_t ink) { return ((255 - ink) * paper + 127) / 255; };
        return Pixel(light(Red(inks)), light(Green(inks)), light(Blue(inks)));
    }

    static std::uint32_t Divided(std::uint32_t pixel) {
        const std::uint32_t alpha = Alpha(pixel);
        if (alpha == 0 || alpha == 255) return pixel;
        const auto colour = [&](std::uint32_t value) {
            return std::min((value * 255 + alpha / 2) / alpha, 255U);
        };
        return Pixel(colour(Red(pixel)), colour(Green(pixel)), colour(Blue(pixel)), alpha);
    }

    const TiffLayout& layout_;
    std::vector<std::uint32_t> colours_; ///< for every index
    Palette narrow_palette_{};
    std::array<std::byte, 256> scaled_{};
    bool palette_is_grey_ = true;
    std::optional<LabColours> lab_;
};

/// Answers how many rows there were.
std::int32_t DecodeStrips(TIFF* tiff, const TiffLayout& layout, DataSource& source, const RowPainter& painter,
                          PixelImage& image) {
    const tmsize_t size = g_tiff->ScanlineSize(tiff);
    const std::uint64_t needed =
        (std::uint64_t{layout.width} * (layout.has_planes ? 1 : layout.samples) * layout.bits + 7) / 8;
    if (size <= 0 || size > kMostTileBytes || static_cast<std::uint64_t>(size) < needed) return 0;
    TiffStrips strips(tiff, layout, source);
    const auto row_bytes = static_cast<std::size_t>(size);
    std::vector<std::byte> row(row_bytes + kPadding);
    const std::uint16_t planes = layout.has_planes ? painter.StoredSamples() : std::uint16_t{1};
    std::int32_t rows = image.height();
    for (std::uint16_t plane = 0; plane < planes; ++plane) {
        for (std::int32_t y = 0; y < rows; ++y) {
            if (!strips.ReadRow(static_cast<std::uint32_t>(y), plane, std::span(row).first(row_bytes))) {
                rows = y;
            } else if (layout.has_planes) {
                painter.PaintPlane(row.data(), plane, image.width(), image.Row(y));
            } else {
                painter.Paint(row.data(), image.width(), image.Row(y));
            }
        }
    }
    for (std::int32_t y = 0; layout.has_planes && y < rows; ++y)
        painter.FinishRow(image.width(), image.Row(y));
    return rows;
}

class TileDecoder {
public:
    TileDecoder(TIFF* tiff, const TiffLayout& layout, const RowPainter& painter, PixelImage& image)
        : tiff_(tiff), layout_(layout), painter_(painter), image_(image) {}

    /// Answers whether there was any tile. What is missing is white.
    bool Decode() {
        const tmsize_t size = g_tiff->TileSize(tiff_);
        g_tiff->GetField(tiff_, TIFFTAG_TILEWIDTH, &width_);
        g_tiff->GetField(tiff_, TIFFTAG_TILELENGTH, &height_);
        row_size_ = g_tiff->TileRowSize(tiff_);
        const std::uint64_t needed =
            (std::uint64_t{width_} * (layout_.has_planes ? 1 : layout_.samples) * layout_.bits + 7) / 8;
        if (size <= 0 || size > kMostTileBytes || row_size_ <= 0 || width_ == 0 || height_ == 0 ||
            static_cast<std::uint64_t>(row_size_) < needed || HasFarMoreThanTheImage(size))
            return false;
        tile_.resize(static_cast<std::size_t>(size) + kPadding);
        for (std::uint32_t y = 0; y < layout_.height; y += std::min(height_, layout_.height)) {
            for (std::uint32_t x = 0; x < layout_.width; x += std::min(width_, layout_.width))
                DecodeTile(x, y);
        }
        return any_;
    }

private:
    /// Tiles may be larger than the image, but decoding them must not take for ever.
    [[nodiscard]] bool HasFarMoreThanTheImage(tmsize_t tile_size) const {
        constexpr std::uint64_t kAlways = std::uint64_t{64} << 20;
        constexpr std::uint64_t kTimes = 8;
        const std::uint64_t across = (std::uint64_t{layout_.width} + width_ - 1) / width_;
        const std::uint64_t down = (std::uint64_t{layout_.height} + height_ - 1) / height_;
        const std::uint64_t planes = layout_.has_planes ? layout_.samples : 1;
        const std::uint64_t image =
            std::uint64_t{layout_.width} * layout_.height * layout_.samples * layout_.bits / 8;
        return across * down * planes > (image * kTimes + kAlways) / static_cast<std::uint64_t>(tile_size);
    }

    void DecodeTile(std::uint32_t left, std::uint32_t top) {
        const auto count = static_cast<std::int32_t>(std::min(width_, layout_.width - left));
        const std::uint32_t rows = std::min(height_, layout_.height - top);
        const std::uint16_t planes = layout_.has_planes ? painter_.StoredSamples() : std::uint16_t{1};
        bool is_whole = true;
        for (std::uint16_t plane = 0; plane < planes; ++plane) {
            const auto size = static_cast<tmsize_t>(tile_.size() - kPadding);
            const std::uint32_t tile = g_tiff->ComputeTile(tiff_, left, top, 0, plane);
            is_whole = is_whole && g_tiff->ReadEncodedTile(tiff_, tile, tile_.data(), size) > 0;
            for (std::uint32_t y = 0; is_whole && y < rows; ++y) {
                const std::byte* stored = tile_.data() + y * static_cast<std::size_t>(row_size_);
                std::uint32_t* pixels = image_.Row(static_cast<std::int32_t>(top + y)) + left;
                if (layout_.has_planes) {
                    painter_.PaintPlane(stored, plane, count, pixels);
                } else {
                    painter_.Paint(stored, count, pixels);
                }
            }
        }
        any_ = any_ || is_whole;
        for (std::uint32_t y = 0; y < rows; ++y) {
            std::uint32_t* pixels = image_.Row(static_cast<std::int32_t>(top + y)) + left;
            if (!is_whole) {
                std::fill_n(pixels, count, kWhite);
            } else if (layout_.has_planes) {
                painter_.FinishRow(count, pixels);
            }
        }
    }

    TIFF* tiff_;
    const TiffLayout& layout_;
    const RowPainter& painter_;
    PixelImage& image_;
    std::uint32_t width_ = 0;
    std::uint32_t height_ = 0;
    tmsize_t row_size_ = 0;
    std::vector<std::byte> tile_;
    bool any_ = false;
};

/// Lets the library make RGB of samples such as YCbCr or CIE L*a*b*, some rows at a time.
class Converter {
public:
    explicit Converter(TIFF* tiff) : begun_(g_tiff->RGBAImageBegin(&state_, tiff, 1, message_.data()) != 0) {
        state_.orientation = ORIENTATION_TOPLEFT;
        state_.req_orientation = ORIENTATION_TOPLEFT;
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter() {
        if (begun_) g_tiff->RGBAImageEnd(&state_);
    }

    /// Answers how many rows there were.
    std::int32_t Convert(TIFF* tiff, PixelImage& image) {
        if (!begun_) return 0;
        const auto width = static_cast<std::uint32_t>(image.width());
        const std::int32_t band = std::min(BandHeight(tiff), image.height());
        std::vector<std::uint32_t> pixels(std::size_t{width} * static_cast<std::size_t>(band));
        for (std::int32_t top = 0; top < image.height(); top += band) {
            const std::int32_t rows = std::min(band, image.height() - top);
            state_.row_offset = top;
            if (g_tiff->RGBAImageGet(&state_, pixels.data(), width, static_cast<std::uint32_t>(rows)) == 0)
                return top;
            for (std::int32_t y = 0; y < rows; ++y) {
                const std::uint32_t* row = pixels.data() + static_cast<std::size_t>(y) * width;
                std::transform(row, row + width, image.Row(top + y), [](std::uint32_t pixel) {
                    return Pixel(TIFFGetR(pixel), TIFFGetG(pixel), TIFFGetB(pixel));
                });
            }
        }
        return image.height();
    }

private:
    static std::int32_t BandHeight(TIFF* tiff) {
        std::uint32_t height = 0;
        if (g_tiff->IsTiled(tiff) != 0) {
            g_tiff->GetField(tiff, TIFFTAG_TILELENGTH, &height);
        } else {
            g_tiff->GetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &height);
        }
        return static_cast<std::int32_t>(std::clamp<std::uint32_t>(height, 1, kMaximumDimension));
    }

    std::array<char, 1024> message_{};
    TIFFRGBAImage state_{};
    bool begun_;
};

} // namespace

ComponentResult DecodeTiff(TIFF* tiff, const TiffLayout& layout, DataSource& source, PixelImage& image) {
    std::int32_t rows = 0;
    if (layout.is_converted) {
        rows = Converter(tiff).Convert(tiff, image);
    } else {
        if (layout.photometric == PHOTOMETRIC_YCBCR) {
            g_tiff->SetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        }
        const RowPainter painter(tiff, layout);
        image.has_alpha = layout.has_alpha;
        image.is_grey = painter.IsGrey();
        if (g_tiff->IsTiled(tiff) != 0) {
            rows = TileDecoder(tiff, layout, painter, image).Decode() ? image.height() : 0;
        } else {
            rows = DecodeStrips(tiff, layout, source, painter, image);
        }
    }
    if (rows == 0) return codecBadDataErr;
    WhitenRows(image, rows, image.height());
    return noErr;
}

} // namespace qt
