// Each pixel becomes a weighted sum of itself and its eight neighbours.
#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/neighbourhood.h"

#include <array>

namespace qt {
namespace {

constexpr double kLargestWeight = 100;

constexpr EffectParameter Weight(std::string_view key, std::string_view label, double standard) {
    return NumberParameter(key, label, -kLargestWeight, kLargestWeight, standard);
}

constexpr std::array kParameters = {
    Weight("w11", "Above left", 0),
    Weight("w12", "Above", -1),
    Weight("w13", "Above right", 0),
    Weight("w21", "Left", -1),
    Weight("w22", "Centre", 5),
    Weight("w23", "Right", -1),
    Weight("w31", "Below left", 0),
    Weight("w32", "Below", -1),
    Weight("w33", "Below right", 0),
    NumberParameter("divisor", "Divisor (0: sum of the weights)", -1000, 1000, 0),
    NumberParameter("bias", "Added to the result", -255, 255, 0),
};

void Render(const EffectInput& input, PixelImage& out) {
    std::array<float, 9> weights{};
    double sum = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) sum += input.values.At(i);
    double divisor = input.values.Number("divisor");
    if (divisor == 0) divisor = sum != 0 ? sum : 1;
    for (std::size_t i = 0; i < weights.size(); ++i)
        weights[i] = static_cast<float>(input.values.At(i) / divisor);
    const auto bias = static_cast<float>(input.values.Number("bias"));
    EachNeighbourhood(input.a, false, out,
                      [&](const Neighbourhood& near, std::uint8_t* bytes, std::size_t count) {
                          for (std::size_t i = 0; i < count; ++i) {
                              float value = bias;
                              for (std::size_t column = 0; column < 3; ++column) {
                                  const std::size_t at = i + column * 4;
                                  value += weights[column] * static_cast<float>(near.above[at]) +
                                           weights[column + 3] * static_cast<float>(near.middle[at]) +
                                           weights[column + 6] * static_cast<float>(near.below[at]);
                              }
                              bytes[i] = static_cast<std::uint8_t>(ToByte(value));
                          }
                      });
}

} // namespace

const Effect kConvolutionEffect = {Code("genk"), "Convolution", kFilterClass, kOutlineClass, 1,
                                   kParameters,  Render};

} // namespace qt
