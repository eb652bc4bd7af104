#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/gaussian.h"

#include <array>

namespace qt {
namespace {

constexpr std::array kParameters = {NumberParameter("radius", "Radius", 0, 100, 4, kPixelUnit)};

void Render(const EffectInput& input, PixelImage& out) {
    GaussianBlur(input.a, input.values.Number("radius"), out);
}

} // namespace

const Effect kBlurEffect = {Code("blur"), "Blur", kFilterClass, kFocusClass, 1, kParameters, Render};

} // namespace qt
