// The look of an old film: grain, specks of dust, hairs, scratches along the film, faded colours.
#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/pixel_math.h"
#include "platform/quicktime/effects/random.h"
#include "platform/quicktime/effects/rows.h"

#include <array>
#include <cmath>
#include <numbers>

namespace qt {
namespace {

constexpr std::array kParameters = {
    PercentParameter("grain", "Grain", 20),          PercentParameter("dust", "Dust", 30),
    PercentParameter("hairs", "Hairs", 30),          PercentParameter("scratches", "Scratches", 30),
    PercentParameter("fading", "Faded colours", 50), WholeParameter("seed", "Pattern number", 0, 9999, 1),
};

/// Draws the marks of one picture, each of its place in a series of random numbers.
class Marks {
public:
    Marks(PixelImage& image, std::uint32_t seed)
        : image_(image),
          series_(MixBits(seed)),
          unit_(static_cast<float>(std::min(image.width(), image.height())) / 500) {}

    void Dust(double density) {
        for (int i = 0; i < Count(density, 150); ++i) {
            const float radius = unit_ * (0.4F + 2 * Next() * Next());
            const std::uint32_t colour = Next() < 0.3F ? kLight : kDark;
            Dot(NextX(), NextY(), radius, colour);
        }
    }

    void Hairs(double density) {
        constexpr int kSteps = 60;
        for (int i = 0; i < Count(density, 20); ++i) {
            float x = NextX();
            float y = NextY();
            float direction = Next() * 2 * std::numbers::pi_v<float>;
            const float bend = (Next() - 0.5F) * 0.2F;
            for (int step = 0; step < kSteps; ++step) {
                Dot(x, y, unit_ * 0.5F, kDark);
                direction += bend + (Next() - 0.5F) * 0.1F;
                x += unit_ * std::cos(direction);
                y += unit_ * std::sin(direction);
            }
        }
    }

    void Scratches(double density) {
        for (int i = 0; i < Count(density, 12); ++i) {
            const auto height = static_cast<float>(image_.height());
            float y = NextY() - height / 2;
            const int rows = static_cast<int>(std::ceil(height * (0.3F + Next())));
            const float slant = (Next() - 0.5F) * 0.02F;
            float x = NextX();
            for (int row = 0; row < rows; ++row, ++y, x += slant)
                Dot(x, y, std::max(unit_ * 0.3F, 0.5F), kLight);
        }
    }

private:
    static constexpr std::uint32_t kDark = 0x20'1810;
    static constexpr std::uint32_t kLight = 0xF4'F0E6;

    static int Count(double density, int most) { return static_cast<int>(std::lround(density * most)); }

    float Next() { return RandomShare(series_, index_++); }
    float NextX() { return Next() * static_cast<float>(image_.width()); }
    float NextY() { return Next() * static_cast<float>(image_.height()); }

    /// A disc with a soft edge, as far as it lies in the image.
    void Dot(float x, float y, float radius, std::uint32_t colour) {
        const auto from = [](float edge) { return std::max(static_cast<std::int32_t>(std::floor(edge)), 0); };
        const auto to = [](float edge, std::int32_t end) {
            return std::min(static_cast<std::int32_t>(std::ceil(edge)) + 1, end);
        };
        for (std::int32_t row = from(y - radius); row < to(y + radius, image_.height()); ++row) {
            for (std::int32_t column = from(x - radius); column < to(x + radius, image_.width()); ++column) {
                const float distance =
                    std::hypot(static_cast<float>(column) + 0.5F - x, static_cast<float>(row) + 0.5F - y);
                const float cover = std::clamp(radius + 0.5F - distance, 0.0F, 1.0F) * 0.8F;
                std::uint32_t& pixel = image_.Row(row)[column];
                pixel = MixChannels(pixel, colour | (pixel & 0xFF00'0000), ToByte(cover * 255));
            }
        }
    }

    PixelImage& image_;
    std::uint32_t series_;
    std::uint32_t index_ = 0;
    float unit_; ///< 1/500 of the shorter side, in pixels
};

void FadeAndGrain(const EffectInput& input, PixelImage& out) {
    constexpr std::uint32_t kFadedLight = 0xF2'E4C8;
    constexpr std::uint32_t kFadedDark = 0x30'2620;
    const std::uint32_t fading = ToByte(static_cast<float>(input.values.Fraction("fading") * 255));
    const auto grain = static_cast<float>(input.values.Fraction("grain") * 100);
    const std::uint32_t series =
        MixBits(static_cast<std::uint32_t>(input.values.Whole("seed")) + 0x9E37'79B9);
    EachRow(out, [&](std::int32_t y) {
        const std::uint32_t* source = input.a.Row(y);
        std::uint32_t* row = out.Row(y);
        const std::uint32_t row_series = MixBits(series + static_cast<std::uint32_t>(y));
        for (std::int32_t x = 0; x < out.width(); ++x) {
            const std::uint32_t faded = MixChannels(kFadedDark, kFadedLight, Luma(source[x]));
            const std::uint32_t pixel = MixChannels(source[x], faded, fading);
            const float noise = RandomShare(row_series, static_cast<std::uint32_t>(x)) - 0.5F;
            const auto change = static_cast<std::int32_t>(std::lround(noise * grain));
            const auto grained = [&](std::uint32_t value) {
                return ToByte(static_cast<std::int32_t>(value) + change);
            };
            row[x] =
                Pixel(grained(Red(pixel)), grained(Green(pixel)), grained(Blue(pixel)), Alpha(source[x]));
        }
    });
}

void Render(const EffectInput& input, PixelImage& out) {
    FadeAndGrain(input, out);
    Marks marks(out, static_cast<std::uint32_t>(input.values.Whole("seed")));
    marks.Dust(input.values.Fraction("dust"));
    marks.Hairs(input.values.Fraction("hairs"));
    marks.Scratches(input.values.Fraction("scratches"));
}

} // namespace

const Effect kFilmNoiseEffect = {Code("fmns"), "Film Noise", kFilterClass, kTextureClass, 1,
                                 kParameters,  Render};

} // namespace qt
