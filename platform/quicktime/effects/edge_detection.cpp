#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/neighbourhood.h"

#include <array>

namespace qt {
namespace {

constexpr std::array kParameters = {
    NumberParameter("gain", "Strength", 0.1, 10, 1),
    ToggleParameter("colour", "Keep colours", false),
    ToggleParameter("invert", "Dark lines on white", false),
};

void Render(const EffectInput& input, PixelImage& out) {
    const auto gain = static_cast<float>(input.values.Number("gain")) / 4; // a sharp edge has a slope of 1020
    const auto inverted = static_cast<std::uint8_t>(input.values.Toggle("invert") ? 0xFF : 0);
    EachNeighbourhood(input.a, !input.values.Toggle("colour"), out,
                      [=](const Neighbourhood& near, std::uint8_t* bytes, std::size_t count) {
                          for (std::size_t i = 0; i < count; ++i) {
                              const auto right = static_cast<float>(SlopeRight(near, i));
                              const auto down = static_cast<float>(SlopeDown(near, i));
                              const float slope = std::sqrt(right * right + down * down) * gain;
                              bytes[i] = static_cast<std::uint8_t>(ToByte(slope) ^ inverted);
                          }
                      });
}

} // namespace

const Effect kEdgeDetectionEffect = {
    Code("edge"), "Edge Detection", kFilterClass, kOutlineClass, 1, kParameters, Render};

} // namespace qt
