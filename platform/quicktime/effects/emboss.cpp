// Relief: light from one side on brightness as height.
#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/neighbourhood.h"

#include <array>
#include <numbers>

namespace qt {
namespace {

constexpr std::array kParameters = {
    NumberParameter("angle", "Light from (0: right, 90: above)", 0, 360, 135, "degrees"),
    NumberParameter("depth", "Depth", 0, 10, 1),
    ToggleParameter("colour", "Keep colours", false),
};

void Render(const EffectInput& input, PixelImage& out) {
    constexpr std::int32_t kFlat = 128;
    const double angle = input.values.Number("angle") * std::numbers::pi / 180;
    const double depth = input.values.Number("depth") / 4;
    // Heights that fall towards the light are bright.
    const auto right = static_cast<float>(-std::cos(angle) * depth);
    const auto down = static_cast<float>(std::sin(angle) * depth);
    const bool colour = input.values.Toggle("colour");
    EachNeighbourhood(
        input.a, !colour, out, [=](const Neighbourhood& near, std::uint8_t* bytes, std::size_t count) {
            for (std::size_t i = 0; i < count; ++i) {
                const std::int32_t ground = colour ? near.middle[i + 4] : kFlat;
                bytes[i] = static_cast<std::uint8_t>(ToByte(static_cast<float>(ground) +
                                                            right * static_cast<float>(SlopeRight(near, i)) +
                                                            down * static_cast<float>(SlopeDown(near, i))));
            }
        });
}

} // namespace

const Effect kEmbossEffect = {Code("embs"), "Emboss", kFilterClass, kOutlineClass, 1, kParameters, Render};

} // namespace qt
