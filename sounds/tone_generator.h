// Tones, noise and silence as blocks of samples.
#pragma once

#include "platform/quicktime/types.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvane {

// Bits of ToneRequest::layout. Without a channel bit the sound is mono; with one or both it is stereo, and a
// channel whose bit is clear stays silent.
inline constexpr std::uint16_t kToneLeft = 0x0001;
inline constexpr std::uint16_t kToneRight = 0x0002;
inline constexpr std::uint16_t kToneSizeMask = 0x00F0;
inline constexpr std::uint16_t kToneEightBit = 0x0000;
inline constexpr std::uint16_t kToneSixteenBit = 0x0010;
inline constexpr std::uint16_t kToneFloat = 0x0020;
inline constexpr std::uint16_t kToneWaveMask = 0x0F00;
inline constexpr std::uint16_t kToneSilence = 0x0000;
inline constexpr std::uint16_t kToneSine = 0x0100;
inline constexpr std::uint16_t kToneSquare = 0x0200;
inline constexpr std::uint16_t kToneSawtooth = 0x0300;
inline constexpr std::uint16_t kToneNoise = 0x0400;

struct ToneRequest {
    Fixed duration = 0x10000;                ///< seconds
    std::uint32_t sample_rate = 0xAC440000U; ///< unsigned 16.16 Hz
    Fixed frequency = 0x01B80000;            ///< Hz
    std::uint16_t layout = kToneLeft | kToneRight | kToneSixteenBit;
};

/// The samples, and what a sound description of them says.
struct ToneBlock {
    OSType format = 0; ///< 'raw ', 'twos' or 'fl32'
    std::int16_t channels = 0;
    std::int16_t sample_bits = 0;
    std::size_t frames = 0;
    std::vector<std::byte> samples;
    double phase = 0; ///< where the next block of this wave goes on, in its own unit
};

struct GeneratedTone {
    std::int32_t code = 0;
    ToneBlock block;
};

/// The waves are made as 16-bit samples; the 8-bit layout keeps the high byte of each, the float layout
/// divides it by 32,768.
///
/// `phase` is the starting point of a sine in radians, of a square wave in periods; other waves have none
/// and hand it on. A sawtooth of negative frequency falls, one of frequency 0 stays at its lowest value.
///
/// Codes: -50 for a negative duration, an unknown size or wave, and a sawtooth above the sample rate, whose
/// period has no frame; -108 for a block of 2 GiB or more.
GeneratedTone GenerateToneBlock(const ToneRequest& request, double phase = 0);

/// Noise runs on from call to call, the same in every process: this returns it to its beginning.
void ResetNoise();

} // namespace corvane
