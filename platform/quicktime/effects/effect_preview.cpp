#include "platform/quicktime/effects/effect_preview.h"

#include "platform/quicktime/effects/area_mean.h"
#include "platform/quicktime/effects/pixel_math.h"
#include "platform/quicktime/effects/render.h"

#include <algorithm>

namespace qt {
namespace {

/// The image at a scale of at most 1, each pixel the mean of what it stands for.
ComponentResult Shrink(const PixelImage& image, double scale, PixelImage& out) {
    const auto scaled = [scale](std::int32_t length) {
        return std::max(static_cast<std::int32_t>(length * scale), 1);
    };
    if (const auto code = out.Allocate(scaled(image.width()), scaled(image.height())); code != noErr)
        return code;
    out.has_alpha = image.has_alpha;
    const auto edge = [](std::int32_t place, std::int32_t length, std::int32_t count) {
        return static_cast<std::int16_t>(std::int64_t{place} * length / count);
    };
    for (std::int32_t y = 0; y < out.height(); ++y) {
        for (std::int32_t x = 0; x < out.width(); ++x) {
            const Rect part = {edge(y, image.height(), out.height()), edge(x, image.width(), out.width()),
                               edge(y + 1, image.height(), out.height()),
                               edge(x + 1, image.width(), out.width())};
            out.Row(y)[x] = AreaMean(image, part);
        }
    }
    return noErr;
}

} // namespace

ComponentResult EffectPreview::SetSource(std::int32_t number, const PixelImage& image) {
    if (number == 1)
        scale_ = std::min(1.0, double{win32::kLongestPreviewSide} / std::max(image.width(), image.height()));
    return Shrink(image, scale_, sources_.at(static_cast<std::size_t>(number - 1)));
}

win32::SettingsPreview EffectPreview::Draw(EffectSettings settings) const {
    settings.values.ScaleLengths(scale_);
    const auto& [a, b] = sources_;
    PixelImage drawn;
    if (RenderEffect(settings, a, b.width() > 0 ? &b : nullptr, drawn) != noErr) return {};
    win32::SettingsPreview preview = {drawn.width(), drawn.height(), {}};
    preview.rgb.reserve(static_cast<std::size_t>(drawn.width()) * static_cast<std::size_t>(drawn.height()) *
                        3);
    for (std::int32_t y = 0; y < drawn.height(); ++y) {
        for (std::int32_t x = 0; x < drawn.width(); ++x) {
            const std::uint32_t pixel = drawn.Row(y)[x];
            const std::uint32_t shown = MixChannels(0xFFFF'FFFF, pixel, Alpha(pixel));
            for (const std::uint32_t channel : {Red(shown), Green(shown), Blue(shown)})
                preview.rgb.push_back(static_cast<std::uint8_t>(channel));
        }
    }
    return preview;
}

} // namespace qt
