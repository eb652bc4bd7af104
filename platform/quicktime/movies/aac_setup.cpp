#include "platform/quicktime/movies/aac_setup.h"

#include <array>

namespace qt {
namespace {

enum Kind : std::uint32_t {
    kMain = 1,
    kLowComplexity = 2,
    kLongTerm = 4,
    kBandReplication = 5,
    kParametricStereo = 29
};

/// Bits from the highest of each byte on; those behind the end are 0.
class BitReader {
public:
    explicit BitReader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    std::uint32_t Take(std::uint32_t count) {
        std::uint32_t value = 0;
        for (; count > 0; --count, ++at_) value = value << 1 | Bit();
        return value;
    }
    bool TakeFlag() { return Take(1) != 0; }

private:
    [[nodiscard]] std::uint32_t Bit() const {
        if (at_ / 8 >= bytes_.size()) return 0;
        return std::to_integer<std::uint32_t>(bytes_[at_ / 8]) >> (7 - at_ % 8) & 1;
    }

    std::span<const std::byte> bytes_;
    std::size_t at_ = 0;
};

std::uint32_t TakeKind(BitReader& bits) {
    constexpr std::uint32_t kEscape = 31;
    const std::uint32_t kind = bits.Take(5);
    return kind == kEscape ? 32 + bits.Take(6) : kind;
}

/// In hertz.
std::uint32_t TakeRate(BitReader& bits) {
    constexpr std::uint32_t kWritten = 15;
    constexpr std::array<std::uint32_t, 13> kRates = {96'000, 88'200, 64'000, 48'000, 44'100, 32'000, 24'000,
                                                      22'050, 16'000, 12'000, 11'025, 8'000,  7'350};
    const std::uint32_t index = bits.Take(4);
    if (index == kWritten) return bits.Take(24);
    return index < kRates.size() ? kRates[index] : 0;
}

/// The elements of a program_config_element, one or two channels each.
std::uint32_t TakeConfiguredChannels(BitReader& bits) {
    bits.Take(4 + 2 + 4); // its number, the kind and the rate once more
    std::uint32_t paired = 0;
    for (int place = 0; place < 3; ++place) paired += bits.Take(4); // in front, at the sides, behind
    const std::uint32_t low = bits.Take(2);
    bits.Take(3 + 4); // what carries no channels
    for (const std::uint32_t mixdown : {4U, 4U, 3U})
        if (bits.TakeFlag()) bits.Take(mixdown);
    std::uint32_t channels = low;
    for (; paired > 0; --paired) {
        channels += bits.TakeFlag() ? 2U : 1U;
        bits.Take(4);
    }
    return channels;
}

/// Whether the end of the set-up rules out that packets carry the upper half of the spectrum, or the second
/// channel.
bool RulesOutStereo(BitReader& bits) {
    constexpr std::uint32_t kExtension = 0x2B7;
    constexpr std::uint32_t kStereoExtension = 0x548;
    if (bits.Take(11) != kExtension || TakeKind(bits) != kBandReplication) return false;
    if (!bits.TakeFlag()) return true;
    TakeRate(bits);
    return bits.Take(11) == kStereoExtension && !bits.TakeFlag();
}

} // namespace

std::uint32_t AacChannels(std::span<const std::byte> setup) {
    constexpr std::uint32_t kEightInAll = 7; // the only number that isn't its channels
    constexpr std::uint32_t kFastestHalved = 24'000;
    BitReader bits(setup);
    std::uint32_t kind = TakeKind(bits);
    const std::uint32_t rate = TakeRate(bits);
    const std::uint32_t configuration = bits.Take(4);
    const bool is_extended = kind == kBandReplication || kind == kParametricStereo;
    if (kind == kParametricStereo && configuration == 1) return 2;
    if (is_extended) {
        TakeRate(bits);
        kind = TakeKind(bits);
    }
    if (kind < kMain || kind > kLongTerm || configuration > kEightInAll) return 0;
    if (configuration > 1) return configuration == kEightInAll ? 8 : configuration;

    bits.TakeFlag();                    // the length of frames
    if (bits.TakeFlag()) bits.Take(14); // a core coder's delay
    bits.TakeFlag();                    // no extension of these kinds
    if (configuration == 0) return TakeConfiguredChannels(bits);
    if (kind != kLowComplexity) return 1;
    if (is_extended) return 0;
    return rate > kFastestHalved || RulesOutStereo(bits) ? 1 : 0;
}

} // namespace qt
