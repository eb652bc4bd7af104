#include "sounds/tone_generator.h"

#include "plugin/errors.h"
#include "sounds/sample_format.h"

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

namespace corvane {

namespace {

constexpr std::uint32_t kFirstNoiseState = 1;
std::uint32_t g_noise_state = kFirstNoiseState;

constexpr std::size_t kBlockLimit = std::numeric_limits<std::int32_t>::max();

double ToDouble(std::int64_t fixed) {
    return static_cast<double>(fixed) / 65536.0;
}

// A wave has Next(), the value of the next frame, and `phase`, which has moved on by then.

struct Silence {
    double phase;

    static std::int16_t Next() { return 0; }
};

/// Position (an angle, or a time) advances by repeated addition, whose rounding the samples show.
struct Oscillation {
    double phase;
    double frequency;
    double step;
    double start = phase;
    double position = 0;

    void Advance() {
        position += step;
        phase = position * frequency + start;
    }
};

struct Sine : Oscillation {
    std::int16_t Next() {
        const auto value = static_cast<std::int16_t>(std::sin(phase) * 32767.0);
        Advance();
        return value;
    }
};

struct Square : Oscillation {
    std::int16_t Next() {
        const std::int16_t value = phase - std::trunc(phase) > 0.5 ? 32767 : -32768;
        Advance();
        return value;
    }
};

struct Sawtooth {
    double phase;
    double exact_period; ///< frames, negative for a falling wave
    std::int64_t period; ///< whole frames, at least 1
    std::int64_t position = 0;

    std::int16_t Next() {
        const auto level =
            static_cast<std::int32_t>((static_cast<double>(position) / exact_period - 0.5) * 65535.0);
        if (++position == period) position = 0;
        return static_cast<std::int16_t>(level); // a falling wave goes on from the top
    }
};

struct Noise {
    double phase;

    static std::int16_t Next() {
        g_noise_state = g_noise_state * 214013U + 2531011U;
        const auto value = static_cast<std::uint16_t>(g_noise_state >> 16 & 0x7FFFU);
        return static_cast<std::int16_t>(InOrder<std::endian::big>(value)); // goes out low byte first
    }
};

struct StoreEightBit {
    static constexpr std::size_t kBytes = 1;
    static void Store(std::byte* address, std::int16_t value) {
        *address = static_cast<std::byte>((value >> 8) + 128);
    }
};

struct StoreSixteenBit {
    static constexpr std::size_t kBytes = kSixteenBitBytes;
    static void Store(std::byte* address, std::int16_t value) {
        StoreSample<std::endian::big>(address, value);
    }
};

struct StoreFloat {
    static constexpr std::size_t kBytes = 4;
    static void Store(std::byte* address, std::int16_t value) {
        const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(value) / 32768.0F);
        for (std::size_t i = 0; i < kBytes; ++i) address[i] = static_cast<std::byte>(bits >> (24 - 8 * i));
    }
};

template <class Storing, class Wave>
void Fill(ToneBlock& block, std::uint16_t layout, Wave wave) {
    const bool mono = block.channels == 1;
    const std::array<bool, 2> carries = {mono || (layout & kToneLeft) != 0, (layout & kToneRight) != 0};
    const auto channels = static_cast<std::size_t>(block.channels);
    std::byte* address = block.samples.data();
    for (std::size_t frame = 0; frame < block.frames; ++frame) {
        std::int16_t value = 0;
        bool fresh = true;
        for (std::size_t channel = 0; channel < channels; ++channel, address += Storing::kBytes) {
            // The channels share each value of a wave; of noise each gets its own.
            if (carries[channel] && fresh) {
                value = wave.Next();
                fresh = std::is_same_v<Wave, Noise>;
            }
            Storing::Store(address, carries[channel] ? value : std::int16_t{0});
        }
    }
    block.phase = wave.phase;
}

template <class Storing>
std::int32_t FillWave(ToneBlock& block, const ToneRequest& request, double phase) {
    constexpr double kTwoPi = 6.2831853071795864769F; // in single precision, which the pitch shows
    const double rate = ToDouble(request.sample_rate);
    const double frequency = ToDouble(request.frequency);
    switch (request.layout & kToneWaveMask) {
    case kToneSilence: Fill<Storing>(block, request.layout, Silence{phase}); return 0;
    case kToneSine: Fill<Storing>(block, request.layout, Sine{{phase, frequency, kTwoPi / rate}}); return 0;
    case kToneSquare: Fill<Storing>(block, request.layout, Square{{phase, frequency, 1.0 / rate}}); return 0;
    case kToneNoise: Fill<Storing>(block, request.layout, Noise{phase}); return 0;
    case kToneSawtooth: {
        if (request.frequency == 0) {
            constexpr double kForever = std::numeric_limits<double>::infinity();
            Fill<Storing>(block, request.layout,
                          Sawtooth{phase, kForever, std::numeric_limits<std::int64_t>::max()});
            return 0;
        }
        const double period = rate / frequency;
        if (std::abs(period) < 1.0) return kErrorWrongParameter;
        Fill<Storing>(block, request.layout,
                      Sawtooth{phase, period, static_cast<std::int64_t>(std::abs(period))});
        return 0;
    }
    default: return kErrorWrongParameter;
    }
}

template <class Storing>
std::int32_t Generate(ToneBlock& block, const ToneRequest& request, double phase, OSType format) {
    const bool mono = (request.layout & (kToneLeft | kToneRight)) == 0;
    block.format = format;
    block.channels = mono ? 1 : 2;
    block.sample_bits = static_cast<std::int16_t>(8 * Storing::kBytes);
    // The product of two singles is exact in double precision.
    block.frames = static_cast<std::size_t>(double{static_cast<float>(ToDouble(request.duration))} *
                                            double{static_cast<float>(ToDouble(request.sample_rate))});
    const std::size_t frame_bytes = Storing::kBytes * static_cast<std::size_t>(block.channels);
    if (block.frames > kBlockLimit / frame_bytes) return kErrorOutOfMemory;
    block.samples.resize(block.frames * frame_bytes);
    return FillWave<Storing>(block, request, phase);
}

} // namespace

GeneratedTone GenerateToneBlock(const ToneRequest& request, double phase) {
    GeneratedTone tone;
    if (request.duration < 0) {
        tone.code = kErrorWrongParameter;
        return tone;
    }
    switch (request.layout & kToneSizeMask) {
    case kToneEightBit: tone.code = Generate<StoreEightBit>(tone.block, request, phase, kRawFormat); break;
    case kToneSixteenBit:
        tone.code = Generate<StoreSixteenBit>(tone.block, request, phase, kTwosFormat);
        break;
    case kToneFloat: tone.code = Generate<StoreFloat>(tone.block, request, phase, kFloatFormat); break;
    default: tone.code = kErrorWrongParameter;
    }
    return tone;
}

void ResetNoise() {
    g_noise_state = kFirstNoiseState;
}

} // namespace corvane
