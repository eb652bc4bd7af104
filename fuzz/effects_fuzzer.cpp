#include "fuzz/fuzz_target.h"
#include "platform/quicktime/effects/render.h"
#include "platform/quicktime/effects/settings_xml.h"

namespace {

qt::PixelImage MadeImage(std::int32_t width, std::int32_t height) {
    qt::PixelImage image;
    Require(image.Allocate(width, height) == noErr);
    image.has_alpha = true;
    std::uint32_t pixel = 1;
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x) image.Row(y)[x] = pixel = pixel * 1'664'525 + 1'013'904'223;
    return image;
}

} // namespace

// Any text is a description or not; one that is says the same when it is written out and read again, and its
// effect can be drawn.
void Fuzz(std::string_view input) {
    const auto settings = qt::EffectSettingsFromXml(input);
    if (!settings) return;
    const std::string xml = qt::EffectSettingsToXml(*settings);
    const auto again = qt::EffectSettingsFromXml(xml);
    Require(again && qt::EffectSettingsToXml(*again) == xml);

    static const qt::PixelImage first = MadeImage(11, 7);
    static const qt::PixelImage second = MadeImage(5, 9);
    qt::PixelImage out;
    Require(qt::RenderEffect(settings, first, &second, out) == noErr);
    Require(out.width() == first.width() && out.height() == first.height());
}
