#include "sounds/mix_samples.h"

#include "sounds/sample_format.h"

namespace corvane {

namespace {

/// The average without a wider type: what both have, and half of what one of them has.
template <class Sample>
constexpr Sample Average(Sample a, Sample b) {
    return static_cast<Sample>((a & b) + ((a ^ b) >> 1));
}

template <std::endian kOrder>
void MixSixteenBit(const std::byte* first, std::byte* second, std::size_t bytes) {
    for (std::size_t i = 0; i + 1 < bytes; i += kSixteenBitBytes) {
        StoreSample<kOrder>(second + i,
                            Average(LoadSample<kOrder>(first + i), LoadSample<kOrder>(second + i)));
    }
}

void MixEightBit(const std::byte* first, std::byte* second, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
        second[i] = std::byte{
            Average(std::to_integer<std::uint8_t>(first[i]), std::to_integer<std::uint8_t>(second[i]))};
    }
}

} // namespace

std::int32_t MixSamples(std::span<const std::byte> first, std::span<std::byte> second, OSType format,
                        std::uint32_t channels) {
    if (first.size() != second.size()) return kErrorWrongParameter;
    if (channels != 1 && channels != 2) return kErrorNotImplemented;
    switch (format) {
    case kSowtFormat: MixSixteenBit<std::endian::little>(first.data(), second.data(), first.size()); break;
    case kTwosFormat: MixSixteenBit<std::endian::big>(first.data(), second.data(), first.size()); break;
    case kRawFormat: MixEightBit(first.data(), second.data(), first.size()); break;
    default: return kErrorNotImplemented;
    }
    return 0;
}

} // namespace corvane
