#include "platform/quicktime/image_exporters/raw_rows.h"

#include <algorithm>
#include <cstring>

namespace qt {
namespace {

/// The three samples of a pixel in the low bits of a word, the first lowest.
template <bool kRedFirst>
std::uint32_t Three(std::uint32_t pixel) {
    if constexpr (kRedFirst) return __builtin_bswap32(pixel) >> 8;
    return pixel & 0xFF'FFFF;
}

/// Four pixels are three words, which is far quicker than twelve bytes one by one.
template <bool kRedFirst>
void Store24(const std::uint32_t* pixels, std::int32_t count, std::byte* samples) {
    std::int32_t x = 0;
    for (; x + 4 <= count; x += 4, samples += 12) {
        const std::uint32_t first = Three<kRedFirst>(pixels[x]);
        const std::uint32_t second = Three<kRedFirst>(pixels[x + 1]);
        const std::uint32_t third = Three<kRedFirst>(pixels[x + 2]);
        const std::uint32_t fourth = Three<kRedFirst>(pixels[x + 3]);
        const std::uint32_t words[3] = {first | second << 24, second >> 8 | third << 16,
                                        third >> 16 | fourth << 8};
        std::memcpy(samples, words, sizeof words);
    }
    for (; x < count; ++x, samples += 3) {
        const std::uint32_t three = Three<kRedFirst>(pixels[x]);
        for (unsigned i = 0; i < 3; ++i) samples[i] = static_cast<std::byte>(three >> 8 * i);
    }
}

} // namespace

void StoreBgr(const std::uint32_t* pixels, std::int32_t count, std::byte* samples) {
    Store24<false>(pixels, count, samples);
}

void StoreRgb(const std::uint32_t* pixels, std::int32_t count, std::byte* samples) {
    Store24<true>(pixels, count, samples);
}

ComponentResult QuantiseOpaque(const PixelImage& image, std::int32_t depth, IndexedImage& out) {
    const ComponentResult code = Quantise(image, depth, out);
    if (code != noErr) return code;
    std::ranges::replace_if(
        out.palette, [](std::uint32_t colour) { return Alpha(colour) == 0; }, Pixel(255, 255, 255));
    return noErr;
}

double ResolutionIn(const std::optional<Fixed>& dots_per_inch, double per_inch) {
    return dots_per_inch && *dots_per_inch > 0 ? *dots_per_inch / 65'536.0 / per_inch : 0.0;
}

} // namespace qt
