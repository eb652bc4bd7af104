#include "platform/quicktime/movies/pcm.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

namespace qt {
namespace {

static_assert(std::endian::native == std::endian::little);

constexpr float kScale16 = 32768.0F;
constexpr float kScale24 = 8388608.0F;
constexpr float kScale32 = 2147483648.0F;

constexpr std::array<float, 256> MuLawTable() {
    std::array<float, 256> table{};
    for (int code = 0; code < 256; ++code) {
        const int bits = ~code & 0xFF;
        const int magnitude = (((bits & 0x0F) << 3) + 0x84) << ((bits & 0x70) >> 4);
        const int value = (bits & 0x80) != 0 ? 0x84 - magnitude : magnitude - 0x84;
        table[static_cast<std::size_t>(code)] = static_cast<float>(value) / kScale16;
    }
    return table;
}

constexpr std::array<float, 256> ALawTable() {
    std::array<float, 256> table{};
    for (int code = 0; code < 256; ++code) {
        const int bits = code ^ 0x55;
        const int segment = (bits & 0x70) >> 4;
        int value = (bits & 0x0F) << 4;
        value += segment == 0 ? 8 : 0x108;
        if (segment > 1) value <<= segment - 1;
        table[static_cast<std::size_t>(code)] =
            static_cast<float>((bits & 0x80) != 0 ? value : -value) / kScale16;
    }
    return table;
}

constexpr std::array<float, 256> kMuLaw = MuLawTable();
constexpr std::array<float, 256> kALaw = ALawTable();

constexpr std::uint16_t Swap(std::uint16_t bits) {
    return __builtin_bswap16(bits);
}
constexpr std::uint32_t Swap(std::uint32_t bits) {
    return __builtin_bswap32(bits);
}
constexpr std::uint64_t Swap(std::uint64_t bits) {
    return __builtin_bswap64(bits);
}

/// Loads and stores at any address, in either byte order.
template <class Value, class Bits, bool kBigEndian>
Value Load(const std::byte* bytes) {
    Bits bits;
    std::memcpy(&bits, bytes, sizeof(bits));
    return std::bit_cast<Value>(kBigEndian ? Swap(bits) : bits);
}

template <class Value, class Bits, bool kBigEndian>
void Store(Value value, std::byte* bytes) {
    const auto bits = kBigEndian ? Swap(std::bit_cast<Bits>(value)) : std::bit_cast<Bits>(value);
    std::memcpy(bytes, &bits, sizeof(bits));
}

template <bool kBigEndian>
void ToFloat(SampleEncoding encoding, const std::byte* bytes, std::size_t count, float* out) {
    switch (encoding) {
    case SampleEncoding::kUnsigned8:
        for (std::size_t i = 0; i < count; ++i)
            out[i] = static_cast<float>(static_cast<int>(bytes[i]) - 128) / 128.0F;
        break;
    case SampleEncoding::kSigned8:
        for (std::size_t i = 0; i < count; ++i)
            out[i] = static_cast<float>(static_cast<std::int8_t>(bytes[i])) / 128.0F;
        break;
    case SampleEncoding::kSigned16:
        for (std::size_t i = 0; i < count; ++i)
            out[i] =
                static_cast<float>(Load<std::int16_t, std::uint16_t, kBigEndian>(bytes + 2 * i)) / kScale16;
        break;
    case SampleEncoding::kSigned24:
        for (std::size_t i = 0; i < count; ++i) {
            const std::byte* sample = bytes + 3 * i;
            const std::byte high = sample[kBigEndian ? 0 : 2];
            const std::byte low = sample[kBigEndian ? 2 : 0];
            const auto bits = static_cast<std::uint32_t>(high) << 24 |
                              static_cast<std::uint32_t>(sample[1]) << 16 |
                              static_cast<std::uint32_t>(low) << 8;
            out[i] = static_cast<float>(static_cast<std::int32_t>(bits) >> 8) / kScale24;
        }
        break;
    case SampleEncoding::kSigned32:
        for (std::size_t i = 0; i < count; ++i)
            out[i] =
                static_cast<float>(Load<std::int32_t, std::uint32_t, kBigEndian>(bytes + 4 * i)) / kScale32;
        break;
    case SampleEncoding::kFloat32:
        for (std::size_t i = 0; i < count; ++i)
            out[i] = Load<float, std::uint32_t, kBigEndian>(bytes + 4 * i);
        break;
    case SampleEncoding::kFloat64:
        for (std::size_t i = 0; i < count; ++i)
            out[i] = static_cast<float>(Load<double, std::uint64_t, kBigEndian>(bytes + 8 * i));
        break;
    case SampleEncoding::kMuLaw:
        for (std::size_t i = 0; i < count; ++i) out[i] = kMuLaw[static_cast<std::size_t>(bytes[i])];
        break;
    case SampleEncoding::kALaw:
        for (std::size_t i = 0; i < count; ++i) out[i] = kALaw[static_cast<std::size_t>(bytes[i])];
        break;
    }
}

/// Nearest integer of a value within ±2^22, halves to even: the sum's low mantissa bits hold it. Unlike a
/// call of lrintf, this turns into vector code. A value that is no number becomes the low limit.
std::int32_t Round(float value, float low, float high) {
    constexpr float kMagic = 12582912.0F;
    value = value >= low ? value : low;
    value = value <= high ? value : high;
    return static_cast<std::int32_t>(std::bit_cast<std::uint32_t>(value + kMagic) -
                                     std::bit_cast<std::uint32_t>(kMagic));
}

/// The same for wider values.
std::int32_t RoundWide(float value, double scale) {
    const double scaled = std::isnan(value) ? 0.0 : static_cast<double>(value) * scale;
    return static_cast<std::int32_t>(std::lrint(std::clamp(scaled, -scale, scale - 1)));
}

template <bool kBigEndian>
bool FromFloat(SampleEncoding encoding, const float* in, std::size_t count, std::byte* bytes) {
    switch (encoding) {
    case SampleEncoding::kUnsigned8:
        for (std::size_t i = 0; i < count; ++i)
            bytes[i] = static_cast<std::byte>(Round(in[i] * 128.0F, -128.0F, 127.0F) + 128);
        return true;
    case SampleEncoding::kSigned8:
        for (std::size_t i = 0; i < count; ++i)
            bytes[i] = static_cast<std::byte>(Round(in[i] * 128.0F, -128.0F, 127.0F));
        return true;
    case SampleEncoding::kSigned16:
        for (std::size_t i = 0; i < count; ++i) {
            const auto value = static_cast<std::int16_t>(Round(in[i] * kScale16, -kScale16, kScale16 - 1));
            Store<std::int16_t, std::uint16_t, kBigEndian>(value, bytes + 2 * i);
        }
        return true;
    case SampleEncoding::kSigned24:
        for (std::size_t i = 0; i < count; ++i) {
            const auto value = static_cast<std::uint32_t>(RoundWide(in[i], static_cast<double>(kScale24)));
            bytes[3 * i + (kBigEndian ? 2 : 0)] = static_cast<std::byte>(value);
            bytes[3 * i + 1] = static_cast<std::byte>(value >> 8);
            bytes[3 * i + (kBigEndian ? 0 : 2)] = static_cast<std::byte>(value >> 16);
        }
        return true;
    case SampleEncoding::kSigned32:
        for (std::size_t i = 0; i < count; ++i)
            Store<std::int32_t, std::uint32_t, kBigEndian>(RoundWide(in[i], static_cast<double>(kScale32)),
                                                           bytes + 4 * i);
        return true;
    case SampleEncoding::kFloat32:
        for (std::size_t i = 0; i < count; ++i) Store<float, std::uint32_t, kBigEndian>(in[i], bytes + 4 * i);
        return true;
    case SampleEncoding::kFloat64:
        for (std::size_t i = 0; i < count; ++i)
            Store<double, std::uint64_t, kBigEndian>(static_cast<double>(in[i]), bytes + 8 * i);
        return true;
    case SampleEncoding::kMuLaw:
    case SampleEncoding::kALaw: return false;
    }
    return false;
}

struct StereoWeights {
    std::array<float, 8> left;
    std::array<float, 8> right;
};

constexpr float kShared = 0.70710678F;

/// Orders of the usual layouts: L R C, L R Ls Rs, L R C Ls Rs, L R C LFE Ls Rs, L R C LFE Cs Ls Rs,
/// L R C LFE Lb Rb Ls Rs. The low-frequency channel is left out.
constexpr std::array<StereoWeights, 6> kToStereo = {{
    {{1, 0, kShared}, {0, 1, kShared}},
    {{1, 0, kShared, 0}, {0, 1, 0, kShared}},
    {{1, 0, kShared, kShared, 0}, {0, 1, kShared, 0, kShared}},
    {{1, 0, kShared, 0, kShared, 0}, {0, 1, kShared, 0, 0, kShared}},
    {{1, 0, kShared, 0, kShared, kShared, 0}, {0, 1, kShared, 0, kShared, 0, kShared}},
    {{1, 0, kShared, 0, kShared, 0, kShared, 0}, {0, 1, kShared, 0, 0, kShared, 0, kShared}},
}};

void ToStereo(const float* in, std::size_t frames, std::uint32_t from, float* out) {
    const StereoWeights& weights = kToStereo[from - 3];
    float sum = 0;
    for (float weight : weights.left) sum += weight;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        float left = 0;
        float right = 0;
        for (std::uint32_t channel = 0; channel < from; ++channel) {
            left += in[frame * from + channel] * weights.left[channel];
            right += in[frame * from + channel] * weights.right[channel];
        }
        out[2 * frame] = left / sum;
        out[2 * frame + 1] = right / sum;
    }
}

} // namespace

std::uint32_t PcmLayout::SampleBytes() const {
    switch (encoding) {
    case SampleEncoding::kSigned16: return 2;
    case SampleEncoding::kSigned24: return 3;
    case SampleEncoding::kSigned32:
    case SampleEncoding::kFloat32: return 4;
    case SampleEncoding::kFloat64: return 8;
    default: return 1;
    }
}

void SamplesToFloat(const PcmLayout& layout, std::span<const std::byte> bytes, std::span<float> samples) {
    const std::size_t count = std::min(samples.size(), bytes.size() / layout.SampleBytes());
    if (layout.big_endian)
        ToFloat<true>(layout.encoding, bytes.data(), count, samples.data());
    else
        ToFloat<false>(layout.encoding, bytes.data(), count, samples.data());
}

bool SamplesFromFloat(const PcmLayout& layout, std::span<const float> samples, std::span<std::byte> bytes) {
    if (bytes.size() / layout.SampleBytes() < samples.size()) return false;
    if (layout.big_endian)
        return FromFloat<true>(layout.encoding, samples.data(), samples.size(), bytes.data());
    return FromFloat<false>(layout.encoding, samples.data(), samples.size(), bytes.data());
}

void MapChannels(std::span<const float> in, std::uint32_t from, std::span<float> out, std::uint32_t to) {
    const std::size_t frames = std::min(in.size() / from, out.size() / to);
    if (from == to) {
        std::copy_n(in.data(), frames * from, out.data());
    } else if (from == 1) {
        for (std::size_t frame = 0; frame < frames; ++frame)
            for (std::uint32_t channel = 0; channel < to; ++channel) out[frame * to + channel] = in[frame];
    } else if (to == 1) {
        for (std::size_t frame = 0; frame < frames; ++frame) {
            float sum = 0;
            for (std::uint32_t channel = 0; channel < from; ++channel) sum += in[frame * from + channel];
            out[frame] = sum / static_cast<float>(from);
        }
    } else if (to == 2 && from <= 8) {
        ToStereo(in.data(), frames, from, out.data());
    } else {
        for (std::size_t frame = 0; frame < frames; ++frame)
            for (std::uint32_t channel = 0; channel < to; ++channel)
                out[frame * to + channel] = channel < from ? in[frame * from + channel] : 0.0F;
    }
}

} // namespace qt
