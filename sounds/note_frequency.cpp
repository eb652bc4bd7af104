#include "sounds/note_frequency.h"

#include <array>

namespace corvane {

namespace {

constexpr int kSemitones = 12;
constexpr int kOctaves = 8;

// Five significant digits of the equal temperament around A4 = 440 Hz; a row is an octave from C up.
// clang-format off
constexpr std::array<float, std::size_t{kSemitones} * kOctaves> kFrequencies = {
    32.703F, 34.648F, 36.708F, 38.891F, 41.203F, 43.654F, 46.249F, 48.999F, 51.913F, 55.0F, 58.27F, 61.735F,
    65.406F, 69.296F, 73.416F, 77.782F, 82.407F, 87.307F, 92.499F, 97.999F, 103.83F, 110.0F, 116.54F, 123.47F,
    130.81F, 138.59F, 146.83F, 155.56F, 164.81F, 174.61F, 185.0F, 196.0F, 207.65F, 220.0F, 233.08F, 246.94F,
    261.63F, 277.18F, 293.66F, 311.13F, 329.63F, 349.23F, 369.99F, 392.0F, 415.3F, 440.0F, 466.16F, 493.88F,
    523.25F, 554.37F, 587.33F, 622.25F, 659.26F, 698.46F, 739.99F, 783.99F, 830.61F, 880.0F, 932.33F, 987.77F,
    1046.5F, 1108.7F, 1174.7F, 1244.5F, 1318.5F, 1396.9F, 1480.0F, 1568.0F, 1661.2F, 1760.0F, 1864.7F, 1975.5F,
    2093.0F, 2217.5F, 2349.3F, 2489.0F, 2637.0F, 2793.8F, 2960.0F, 3136.0F, 3322.4F, 3520.0F, 3729.3F, 3951.1F,
    4186.0F, 4434.9F, 4698.6F, 4978.0F, 5274.0F, 5587.7F, 5919.9F, 6271.9F, 6644.9F, 7040.0F, 7458.6F, 7902.1F,
};
// clang-format on

constexpr std::optional<int> Semitone(char letter) {
    switch (letter) {
    case 'C':
    case 'c': return 0;
    case 'D':
    case 'd': return 2;
    case 'E':
    case 'e': return 4;
    case 'F':
    case 'f': return 5;
    case 'G':
    case 'g': return 7;
    case 'A':
    case 'a': return 9;
    case 'B':
    case 'b': return 10;
    case 'H':
    case 'h': return 11;
    default: return std::nullopt;
    }
}

constexpr int Accidental(char sign) {
    if (sign == '#') return 1;
    return sign == 'b' || sign == 'B' ? -1 : 0;
}

} // namespace

std::optional<Fixed> NoteFrequency(std::string_view text) {
    if (text.size() < 2) return std::nullopt;
    const auto semitone = Semitone(text[0]);
    if (!semitone) return std::nullopt;

    const int accidental = Accidental(text[1]);
    text.remove_prefix(accidental == 0 ? 1 : 2);
    if (text.empty() || text[0] < '1' || text[0] > '0' + kOctaves) return std::nullopt;

    const int index = (text[0] - '1') * kSemitones + *semitone + accidental;
    if (index < 0 || index >= kSemitones * kOctaves) return std::nullopt;
    return static_cast<Fixed>(kFrequencies[static_cast<std::size_t>(index)] * 65536.0F);
}

} // namespace corvane
