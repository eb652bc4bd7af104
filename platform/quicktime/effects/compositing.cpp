// Effects that combine the pixels of both sources place by place: cross fade, chroma key, alpha and channel
// compositor.
#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/effects/pixel_math.h"
#include "platform/quicktime/effects/second_source.h"

#include <array>
#include <cmath>

namespace qt {
namespace {

constexpr std::array kCrossFade = {PercentParameter("percent", "Share of source B", 50)};

void RenderCrossFade(const EffectInput& input, PixelImage& out) {
    const auto weight = static_cast<std::uint32_t>(std::lround(input.values.Fraction("percent") * 255));
    EachPair(input, out, [=](std::uint32_t a, std::uint32_t b, auto, auto) { return Mix(a, b, weight); });
}

constexpr std::array kChromaKey = {
    ColourParameter("key", "Colour that becomes source B", 0x00FF00),
    PercentParameter("tolerance", "Tolerance", 25),
    PercentParameter("softness", "Softness", 10),
};

/// Colour without brightness, so that a shadow on the key's screen is still the screen.
struct Chroma {
    float blue;
    float red;
};

Chroma ChromaOf(std::uint32_t pixel) {
    const auto red = static_cast<float>(Red(pixel));
    const auto green = static_cast<float>(Green(pixel));
    const auto blue = static_cast<float>(Blue(pixel));
    return {-0.1687F * red - 0.3313F * green + 0.5F * blue, 0.5F * red - 0.4187F * green - 0.0813F * blue};
}

void RenderChromaKey(const EffectInput& input, PixelImage& out) {
    constexpr float kLongest = 255; // between two chromas
    const Chroma key = ChromaOf(input.values.Colour("key"));
    const auto near = static_cast<float>(input.values.Fraction("tolerance")) * kLongest;
    const auto border = std::max(static_cast<float>(input.values.Fraction("softness")) * kLongest, 0.01F);
    EachPair(input, out, [=](std::uint32_t a, std::uint32_t b, auto, auto) {
        const Chroma colour = ChromaOf(a);
        const float distance = std::hypot(colour.blue - key.blue, colour.red - key.red);
        return Mix(b, a, ToByte((distance - near) / border * 255));
    });
}

constexpr std::array<EffectChoice, 5> kOperations = {{{"over", "A over B"},
                                                      {"in", "A where B is"},
                                                      {"out", "A where B is not"},
                                                      {"atop", "A over B, where B is"},
                                                      {"xor", "Either, not both"}}};
constexpr std::array<EffectChoice, 3> kAlphaKinds = {
    {{"straight", "Straight"}, {"black", "Multiplied with black"}, {"white", "Multiplied with white"}}};
constexpr std::array kAlphaCompositor = {
    ChoiceParameter("operation", "Operation", kOperations),
    ChoiceParameter("alpha", "Alpha of source A", kAlphaKinds),
    PercentParameter("opacity", "Opacity of source A", 100),
};

/// The straight pixel of source A, whichever way its file has mixed alpha into its colours.
std::uint32_t StraightBy(std::int32_t kind, std::uint32_t pixel) {
    if (kind == 0) return pixel;
    const std::uint32_t alpha = Alpha(pixel);
    const std::uint32_t white = kind == 2 ? 255 - alpha : 0;
    const auto channel = [=](std::uint32_t value) { return value - std::min(value, white); };
    return Unpremultiply(Pixel(channel(Red(pixel)), channel(Green(pixel)), channel(Blue(pixel)), alpha));
}

void RenderAlphaCompositor(const EffectInput& input, PixelImage& out) {
    const auto operation = static_cast<std::size_t>(input.values.Whole("operation"));
    const std::int32_t kind = input.values.Whole("alpha");
    const auto opacity = static_cast<std::uint32_t>(std::lround(input.values.Fraction("opacity") * 255));
    EachPair(input, out, [=](std::uint32_t source_a, std::uint32_t b, auto, auto) {
        const std::uint32_t alpha_a = Divide255(Alpha(source_a) * opacity);
        const std::uint32_t a = (StraightBy(kind, source_a) & 0x00FF'FFFF) | alpha_a << 24;
        const std::uint32_t outside_a = 255 - alpha_a;
        const std::uint32_t outside_b = 255 - Alpha(b);
        // What is seen of each, by operation: over, in, out, atop, xor.
        const std::array<std::uint32_t, 5> weights_a = {255, Alpha(b), outside_b, Alpha(b), outside_b};
        const std::array<std::uint32_t, 5> weights_b = {outside_a, 0, 0, outside_a, outside_a};
        return Blend(a, weights_a[operation], b, weights_b[operation]);
    });
}

constexpr std::array<EffectChoice, 10> kChannels = {{{"a-red", "Red of A"},
                                                     {"a-green", "Green of A"},
                                                     {"a-blue", "Blue of A"},
                                                     {"a-alpha", "Alpha of A"},
                                                     {"b-red", "Red of B"},
                                                     {"b-green", "Green of B"},
                                                     {"b-blue", "Blue of B"},
                                                     {"b-alpha", "Alpha of B"},
                                                     {"none", "None"},
                                                     {"full", "Full"}}};
constexpr std::array kChannelCompositor = {
    ChoiceParameter("red", "Red from", kChannels, 0),
    ChoiceParameter("green", "Green from", kChannels, 5),
    ChoiceParameter("blue", "Blue from", kChannels, 6),
    ChoiceParameter("alpha", "Alpha from", kChannels, 9),
};

void RenderChannelCompositor(const EffectInput& input, PixelImage& out) {
    const std::array<std::size_t, 4> from = {static_cast<std::size_t>(input.values.Whole("red")),
                                             static_cast<std::size_t>(input.values.Whole("green")),
                                             static_cast<std::size_t>(input.values.Whole("blue")),
                                             static_cast<std::size_t>(input.values.Whole("alpha"))};
    EachPair(input, out, [=](std::uint32_t a, std::uint32_t b, auto, auto) {
        const std::array<std::uint32_t, 10> channels = {Red(a),   Green(a), Blue(a),  Alpha(a), Red(b),
                                                        Green(b), Blue(b),  Alpha(b), 0,        255};
        return Pixel(channels[from[0]], channels[from[1]], channels[from[2]], channels[from[3]]);
    });
    out.has_alpha = true;
}

} // namespace

const Effect kCrossFadeEffect = {Code("dslv"), "Cross Fade",   kCombineClass, kCompositeClass, 2,
                                 kCrossFade,   RenderCrossFade};
const Effect kChromaKeyEffect = {Code("ckey"), "Chroma Key",   kCombineClass, kCompositeClass, 2,
                                 kChromaKey,   RenderChromaKey};
const Effect kAlphaCompositorEffect = {
    Code("blnd"),     "Alpha Compositor",   kCombineClass, kCompositeClass, 2,
    kAlphaCompositor, RenderAlphaCompositor};
const Effect kChannelCompositorEffect = {
    Code("chnl"),       "Channel Compositor",   kCombineClass, kCompositeClass, 2,
    kChannelCompositor, RenderChannelCompositor};

} // namespace qt
