#include "platform/quicktime/effects/render.h"

#include <algorithm>
#include <new>

namespace qt {
namespace {

void Copy(const PixelImage& image, PixelImage& out) {
    for (std::int32_t y = 0; y < image.height(); ++y) std::copy_n(image.Row(y), image.width(), out.Row(y));
}

bool Covers(const PixelImage& image, const PixelImage& other) {
    return image.width() >= other.width() && image.height() >= other.height();
}

} // namespace

ComponentResult RenderEffect(const std::optional<EffectSettings>& settings, const PixelImage& a,
                             const PixelImage* b, PixelImage& out) {
    if (out.width() != a.width() || out.height() != a.height()) {
        if (const auto code = out.Allocate(a.width(), a.height()); code != noErr) return code;
    }
    const bool renders = settings && (settings->effect->sources == 1 || b != nullptr);
    const bool uses_b = renders && settings->effect->sources == 2;
    out.has_alpha = a.has_alpha || (uses_b && (b->has_alpha || !Covers(*b, a)));
    out.is_grey = !renders && a.is_grey;
    try {
        if (renders) {
            settings->effect->render({settings->values, a, b}, out);
        } else {
            Copy(a, out);
        }
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
    return noErr;
}

} // namespace qt
