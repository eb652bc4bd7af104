#include "sounds/amplify_samples.h"

#include "sounds/sample_format.h"

#include <algorithm>
#ifdef __x86_64__
#ifdef __clang__
#define _Bool bool // NOLINT(bugprone-reserved-identifier): the header is C, and clang has no such type in C++
#endif
#include <sys/platform/x86.h>
#endif

namespace corvane {

namespace {

template <std::endian kOrder>
std::int16_t Peak(const std::byte* samples, std::size_t count) {
    std::int16_t peak = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::int16_t sample = LoadSample<kOrder>(samples + kSixteenBitBytes * i);
        peak = std::max({peak, sample, static_cast<std::int16_t>(-sample)});
    }
    return peak;
}

template <std::endian kOrder>
[[gnu::always_inline]] inline void Scale(std::byte* samples, std::size_t count, float factor, float high,
                                         float low) {
    for (std::size_t i = 0; i < count; ++i) {
        std::byte* address = samples + kSixteenBitBytes * i;
        float scaled = static_cast<float>(LoadSample<kOrder>(address)) * factor;
        scaled = scaled < high ? scaled : high;
        scaled = scaled > low ? scaled : low;
        StoreSample<kOrder>(address, static_cast<std::int16_t>(static_cast<std::int32_t>(scaled)));
    }
}

[[gnu::always_inline]] inline void Amplify(std::span<std::byte> samples, std::endian order, float factor,
                                           float limit) {
    const float high = std::clamp(limit, 0.0F, 1.0F) * 32767.0F;
    const float low = -high - 1.0F;
    const std::size_t count = samples.size() / kSixteenBitBytes;
    order == std::endian::big ? Scale<std::endian::big>(samples.data(), count, factor, high, low)
                              : Scale<std::endian::little>(samples.data(), count, factor, high, low);
}

#ifdef __x86_64__
// Baseline x86-64 has no cheap way back from 32 to 16 bits: this runs twice as fast. Neither way may fuse the
// multiplication with anything, so both give the same samples.
[[gnu::target("avx2")]] void AmplifyWithAvx2(std::span<std::byte> samples, std::endian order, float factor,
                                             float limit) {
    Amplify(samples, order, factor, limit);
}
#endif

} // namespace

std::int16_t FindPeak(std::span<const std::byte> samples, std::endian order) {
    const std::size_t count = samples.size() / kSixteenBitBytes;
    return order == std::endian::big ? Peak<std::endian::big>(samples.data(), count)
                                     : Peak<std::endian::little>(samples.data(), count);
}

float NormalisingFactor(std::int16_t peak) {
    return peak == 0 ? 1.0F : 32767.0F / static_cast<float>(peak);
}

void AmplifySamples(std::span<std::byte> samples, std::endian order, float factor, float limit) {
#ifdef __x86_64__
    // As the C library has noted it: in a virtual machine the processor's own answer takes a long time.
    if (CPU_FEATURE_ACTIVE(AVX2)) return AmplifyWithAvx2(samples, order, factor, limit);
#endif
    Amplify(samples, order, factor, limit);
}

std::int32_t AmplifyBlock(std::span<std::byte> block, OSType format, std::uint32_t channels,
                          std::size_t frames, float factor, float limit) {
    const auto order = SixteenBitOrder(format);
    if (!order) return RefusalOfFormat(format);
    const std::size_t frame_bytes = (channels == 2 ? 2 : 1) * kSixteenBitBytes;
    const auto samples = block.first(std::min(frames, block.size() / frame_bytes) * frame_bytes);
    if (limit == kNormaliseLimit) {
        factor = NormalisingFactor(FindPeak(samples, *order));
        limit = 1.0F;
    }
    AmplifySamples(samples, *order, factor, limit);
    return 0;
}

} // namespace corvane
