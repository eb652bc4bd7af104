// Drawing effects on small images made on the spot.
#pragma once

#include "platform/quicktime/effects/pixel_math.h"
#include "platform/quicktime/effects/render.h"
#include "platform/quicktime/type_codes.h"
#include "tests/quicktime/pixels.h"
#include "tests/support/made_images.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <random>
#include <utility>

namespace effect_test {

using corvane::test::ForEachPixel;
using corvane::test::MakeImage;
using corvane::test::Pixels;
using corvane::test::PixelsOf;
using Texts = std::initializer_list<std::pair<const char*, const char*>>;

/// All 256 greys in a row.
inline qt::PixelImage Greys() {
    return MakeImage(256, 1,
                     [](int x, int) { return 0xFF00'0000 | static_cast<std::uint32_t>(x) * 0x01'0101; });
}

/// Random colours, and random alpha if wanted.
inline qt::PixelImage MakeNoise(std::int32_t width, std::int32_t height, bool alpha, unsigned seed = 1) {
    std::mt19937 random(seed);
    return MakeImage(width, height, [&](int, int) {
        const auto pixel = static_cast<std::uint32_t>(random());
        return alpha ? pixel : pixel | 0xFF00'0000;
    });
}

inline qt::EffectSettings Settings(const char* type, Texts texts = {}) {
    const qt::Effect* effect = qt::FindEffect(qt::CodeOfText(type));
    EXPECT_NE(effect, nullptr) << type;
    qt::EffectSettings settings = {effect, qt::EffectValues(effect->parameters)};
    for (const auto& [key, text] : texts) settings.values.SetText(settings.values.Find(key).value(), text);
    return settings;
}

inline qt::PixelImage Render(const qt::EffectSettings& settings, const qt::PixelImage& a,
                             const qt::PixelImage* b = nullptr) {
    qt::PixelImage out;
    EXPECT_EQ(qt::RenderEffect(settings, a, b, out), noErr);
    return out;
}

inline qt::PixelImage Render(const char* type, Texts texts, const qt::PixelImage& a,
                             const qt::PixelImage* b = nullptr) {
    return Render(Settings(type, texts), a, b);
}

/// The largest difference of two channels; what can't be seen does not count.
inline std::uint32_t Difference(const qt::PixelImage& left, const qt::PixelImage& right) {
    EXPECT_EQ(left.width(), right.width());
    EXPECT_EQ(left.height(), right.height());
    std::uint32_t most = 0;
    const auto apart = [&](std::uint32_t a, std::uint32_t b) {
        most = std::max(most, a > b ? a - b : b - a);
    };
    ForEachPixel(left, [&](int x, int y, std::uint32_t a) {
        const std::uint32_t b = right.Row(y)[x];
        apart(qt::Alpha(a), qt::Alpha(b));
        if (qt::Alpha(a) == 0 || qt::Alpha(b) == 0) return;
        apart(qt::Red(a), qt::Red(b));
        apart(qt::Green(a), qt::Green(b));
        apart(qt::Blue(a), qt::Blue(b));
    });
    return most;
}

/// Images that go to ImageMagick and back, as rows of red, green, blue and alpha.
class Magick {
public:
    void Write(const qt::PixelImage& image, const std::string& name) const {
        std::ofstream file(images_.folder.Path(name), std::ios::binary);
        file << "P7\nWIDTH " << image.width() << "\nHEIGHT " << image.height()
             << "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n";
        ForEachPixel(image, [&](int, int, std::uint32_t pixel) {
            for (const std::uint32_t value :
                 {qt::Red(pixel), qt::Green(pixel), qt::Blue(pixel), qt::Alpha(pixel)})
                file.put(static_cast<char>(value));
        });
    }

    /// What convert makes of the arguments, in which @NAME is the path of what Write has written.
    [[nodiscard]] qt::PixelImage Convert(std::string arguments, std::int32_t width,
                                         std::int32_t height) const {
        for (std::size_t at = 0; (at = arguments.find('@', at)) != std::string::npos;)
            arguments.replace(at, 1, images_.folder.Path("") + "/");
        const corvane::test::Bytes bytes = images_.MakeBytes(arguments + " -depth 8", "rgba:out.rgba");
        EXPECT_EQ(bytes.size(), static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
        return MakeImage(width, height, [&](int x, int y) {
            const std::size_t at = 4 * static_cast<std::size_t>(y * width + x);
            const auto value = [&](std::size_t i) {
                return std::to_integer<std::uint32_t>(bytes.at(at + i));
            };
            return qt::Pixel(value(0), value(1), value(2), value(3));
        });
    }

private:
    corvane::test::MadeImages images_;
};

} // namespace effect_test
