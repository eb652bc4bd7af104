#include "platform/quicktime/image_exporters/quantise.h"

#include "platform/quicktime/image_exporters/palette_choice.h"

#include <algorithm>
#include <array>
#include <bit>
#include <new>
#include <span>

namespace qt {
namespace {

constexpr std::uint32_t kTransparent = 0;
constexpr std::uint32_t kHalfOpaque = 128;

/// A pixel as an image without partial opacity has it.
constexpr std::uint32_t Settled(std::uint32_t pixel) {
    return Alpha(pixel) < kHalfOpaque ? kTransparent : pixel | 0xFF00'0000U;
}

/// Up to 256 different colours and the place of each.
class ColourSet {
public:
    explicit ColourSet(std::size_t limit) : limit_(limit) { slots_.fill(kFree); }

    /// False when that would be one too many.
    bool Add(std::uint32_t colour) {
        std::uint16_t& slot = Slot(colour);
        if (slot != kFree) return true;
        if (colours_.size() == limit_) return false;
        slot = static_cast<std::uint16_t>(colours_.size());
        colours_.push_back(colour);
        return true;
    }
    /// Of a colour that was added.
    std::uint8_t IndexOf(std::uint32_t colour) { return static_cast<std::uint8_t>(Slot(colour)); }

    [[nodiscard]] const std::vector<std::uint32_t>& colours() const { return colours_; }

private:
    static constexpr std::uint16_t kFree = 0xFFFF;
    static constexpr unsigned kSlotBits = 11;

    std::uint16_t& Slot(std::uint32_t colour) {
        std::size_t at = colour * 0x9E37'79B1U >> (32 - kSlotBits);
        while (slots_[at] != kFree && colours_[slots_[at]] != colour) at = (at + 1) % slots_.size();
        return slots_[at];
    }

    std::size_t limit_;
    std::vector<std::uint32_t> colours_;
    std::array<std::uint16_t, 1U << kSlotBits> slots_;
};

/// Calls take(colour) for each pixel whose neighbour to the left is another colour, until it is false.
template <class Take>
bool EachChange(const PixelImage& image, Take take) {
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::uint32_t* row = image.Row(y);
        for (std::int32_t x = 0; x < image.width(); ++x) {
            if ((x == 0 || row[x] != row[x - 1]) && !take(Settled(row[x]))) return false;
        }
    }
    return true;
}

/// The image with its own colours when there are no more than `limit`.
bool KeepColours(const PixelImage& image, std::size_t limit, IndexedImage& out) {
    ColourSet found(limit);
    if (!EachChange(image, [&](std::uint32_t colour) { return found.Add(colour); })) return false;
    out.palette = found.colours();
    std::ranges::sort(out.palette);
    ColourSet sorted(limit);
    for (const std::uint32_t colour : out.palette) sorted.Add(colour);
    std::uint8_t* index = out.indices.data();
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::uint32_t* row = image.Row(y);
        for (std::int32_t x = 0; x < image.width(); ++x, ++index) {
            *index = x > 0 && row[x] == row[x - 1] ? index[-1] : sorted.IndexOf(Settled(row[x]));
        }
    }
    return true;
}

/// Palette index nearest to a colour, found once for each of 65,536 cells.
class NearestColour {
public:
    explicit NearestColour(std::span<const std::uint32_t> palette)
        : palette_(palette), known_(1U << 16, kUnknown) {}

    std::uint8_t IndexOf(std::int32_t red, std::int32_t green, std::int32_t blue) {
        std::uint16_t& cell =
            known_[static_cast<std::size_t>((red >> 3) << 11 | (green >> 2) << 5 | blue >> 3)];
        if (cell == kUnknown) cell = Search((red & ~7) + 4, (green & ~3) + 2, (blue & ~7) + 4);
        return static_cast<std::uint8_t>(cell);
    }

private:
    static constexpr std::uint16_t kUnknown = 0xFFFF;

    [[nodiscard]] std::uint16_t Search(std::int32_t red, std::int32_t green, std::int32_t blue) const {
        std::size_t best = 0;
        std::int32_t best_distance = INT32_MAX;
        for (std::size_t i = 0; i < palette_.size(); ++i) {
            const std::int32_t dr = static_cast<std::int32_t>(Red(palette_[i])) - red;
            const std::int32_t dg = static_cast<std::int32_t>(Green(palette_[i])) - green;
            const std::int32_t db = static_cast<std::int32_t>(Blue(palette_[i])) - blue;
            const std::int32_t distance = dr * dr + dg * dg + db * db;
            if (distance < best_distance) {
                best_distance = distance;
                best = i;
            }
        }
        return static_cast<std::uint16_t>(best);
    }

    std::span<const std::uint32_t> palette_;
    std::vector<std::uint16_t> known_;
};

/// Floyd and Steinberg's error diffusion, rows in alternating directions. pick(colour, error) chooses an
/// index for a colour of kChannels values from 0 to 255 and leaves the error; load(pixel) gives a pixel's
/// values.
template <std::size_t kChannels, class Load, class Pick>
void Dither(const PixelImage& image, std::uint8_t* indices, Load load, Pick pick) {
    using Values = std::array<std::int32_t, kChannels>;
    const auto width = static_cast<std::size_t>(image.width());
    std::vector<Values> below(width + 2); // sixteenths of errors for the next row; column x is at x + 1
    for (std::int32_t y = 0; y < image.height(); ++y, indices += width) {
        const std::uint32_t* row = image.Row(y);
        const bool backward = y % 2 != 0;
        const std::ptrdiff_t step = backward ? -1 : 1;
        auto x = static_cast<std::ptrdiff_t>(backward ? width - 1 : 0);
        Values ahead{};  // for the next pixel of this row
        Values under{};  // for the pixel below the latest, as far as it is known
        Values beyond{}; // for the one below the next
        for (std::size_t i = 0; i < width; ++i, x += step) {
            Values colour = load(row[x]);
            const Values& from_above = below[static_cast<std::size_t>(x + 1)];
            for (std::size_t c = 0; c < kChannels; ++c) {
                const std::int32_t error = (ahead[c] + from_above[c] + 8) >> 4;
                colour[c] = std::clamp(colour[c] + error, 0, 255);
            }
            Values error;
            indices[x] = pick(colour, error);
            Values& behind = below[static_cast<std::size_t>(x + 1 - step)];
            for (std::size_t c = 0; c < kChannels; ++c) {
                behind[c] = under[c] + 3 * error[c];
                under[c] = beyond[c] + 5 * error[c];
                beyond[c] = error[c];
                ahead[c] = 7 * error[c];
            }
        }
        below[static_cast<std::size_t>(x + 1 - step)] = under;
    }
}

void DitherColours(const PixelImage& image, IndexedImage& out) {
    using Values = std::array<std::int32_t, 3>;
    NearestColour nearest(out.palette);
    Dither<3>(
        image, out.indices.data(),
        [](std::uint32_t pixel) {
            return Values{static_cast<std::int32_t>(Red(pixel)), static_cast<std::int32_t>(Green(pixel)),
                          static_cast<std::int32_t>(Blue(pixel))};
        },
        [&](const Values& colour, Values& error) {
            const std::uint8_t index = nearest.IndexOf(colour[0], colour[1], colour[2]);
            const std::uint32_t chosen = out.palette[index];
            error = {colour[0] - static_cast<std::int32_t>(Red(chosen)),
                     colour[1] - static_cast<std::int32_t>(Green(chosen)),
                     colour[2] - static_cast<std::int32_t>(Blue(chosen))};
            return index;
        });
}

/// Chooses a palette and draws the image with it.
void ReduceColours(const PixelImage& image, std::size_t limit, IndexedImage& out) {
    const bool transparent =
        image.has_alpha && !EachChange(image, [](std::uint32_t colour) { return colour != kTransparent; });
    out.palette = ChoosePalette(image, transparent ? limit - 1 : limit);
    DitherColours(image, out);
    if (!transparent) return;
    const auto hole = static_cast<std::uint8_t>(out.palette.size());
    out.palette.push_back(kTransparent);
    std::uint8_t* index = out.indices.data();
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::uint32_t* row = image.Row(y);
        for (std::int32_t x = 0; x < image.width(); ++x, ++index) {
            if (Alpha(row[x]) < kHalfOpaque) *index = hole;
        }
    }
}

/// Brightness of a pixel in front of white.
std::int32_t Luminance(std::uint32_t pixel) {
    const std::uint32_t grey = (Red(pixel) * 77 + Green(pixel) * 150 + Blue(pixel) * 29 + 128) >> 8;
    const std::uint32_t alpha = Alpha(pixel);
    if (alpha == 255) return static_cast<std::int32_t>(grey);
    return static_cast<std::int32_t>((grey * alpha + 255 * (255 - alpha) + 127) / 255);
}

/// Levels at equal distances from black to white.
void ReduceToGrey(const PixelImage& image, std::int32_t levels, IndexedImage& out) {
    const std::int32_t highest = levels - 1;
    out.palette.clear();
    for (std::int32_t level = 0; level < levels; ++level) {
        const auto value = static_cast<std::uint32_t>(255 / highest * level);
        out.palette.push_back(Pixel(value, value, value));
    }
    std::array<std::uint8_t, 256> nearest;
    for (std::size_t value = 0; value < nearest.size(); ++value) {
        nearest[value] = static_cast<std::uint8_t>((static_cast<std::int32_t>(value) * highest + 127) / 255);
    }
    using Value = std::array<std::int32_t, 1>;
    Dither<1>(
        image, out.indices.data(), [](std::uint32_t pixel) { return Value{Luminance(pixel)}; },
        [&](const Value& value, Value& error) {
            const std::uint8_t level = nearest[static_cast<std::size_t>(value[0])];
            error[0] = value[0] - 255 / highest * level;
            return level;
        });
}

} // namespace

ComponentResult Quantise(const PixelImage& image, std::int32_t depth, IndexedImage& out) {
    constexpr std::int32_t kGreyDepths = 32; // the depths above are so many bits of grey
    const std::int32_t bits = depth > kGreyDepths ? depth - kGreyDepths : depth;
    if (bits < 1 || bits > 8 || !std::has_single_bit(static_cast<std::uint32_t>(bits))) return paramErr;
    const std::size_t limit = std::size_t{1} << bits;
    try {
        out.width = image.width();
        out.height = image.height();
        out.indices.resize(static_cast<std::size_t>(out.width) * static_cast<std::size_t>(out.height));
        if (depth > kGreyDepths) {
            ReduceToGrey(image, static_cast<std::int32_t>(limit), out);
        } else if (!KeepColours(image, limit, out)) {
            if (bits == 1) {
                ReduceToGrey(image, 2, out);
            } else {
                ReduceColours(image, limit, out);
            }
        }
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
    return noErr;
}

} // namespace qt
