#include "sounds/note_frequency.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace corvane {
namespace {

TEST(NoteFrequency, IsTheEqualTemperamentInFiveDigits) {
    const char* const names[] = {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "g#", "a", "b", "H"};
    for (int octave = 1; octave <= 8; ++octave) {
        for (int semitone = 0; semitone < 12; ++semitone) {
            const double exact = 440.0 * std::pow(2.0, (12 * (octave - 1) + semitone - 45) / 12.0);
            char digits[32];
            std::snprintf(digits, sizeof digits, "%.5g", exact);
            const std::string name = names[semitone] + std::to_string(octave);
            const auto expected =
                static_cast<Fixed>(std::floor(double{std::strtof(digits, nullptr)} * 65536.0));
            EXPECT_EQ(NoteFrequency(name), expected) << name;
        }
    }
}

TEST(NoteFrequency, ReadsSignsInEitherCaseAndIgnoresTheRest) {
    for (const char* name : {"A4", "Bb4", "bB4", "A4 and more"})
        EXPECT_EQ(NoteFrequency(name), 440 * 65536) << name;
    EXPECT_EQ(NoteFrequency("h#3"), NoteFrequency("c4"));
    EXPECT_EQ(NoteFrequency("Cb5"), NoteFrequency("H4"));
    EXPECT_EQ(NoteFrequency("fb2"), NoteFrequency("E2"));
}

TEST(NoteFrequency, RefusesWhatIsNoNote) {
    for (const char* text :
         {"", "A", "A#", "I4", "@4", "440", "A0", "A9", "a 4", " A4", "A##4", "Cb1", "H#8", "A-1"}) {
        EXPECT_EQ(NoteFrequency(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace corvane
