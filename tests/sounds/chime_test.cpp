#include "sounds/generate_tone.h"

#include "tests/sounds/samples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace corvane {
namespace {

constexpr Fixed kNote = 10922;
constexpr std::uint32_t kRate = 44100U << 16;
constexpr std::size_t kSilence = 172; // 256/65536 s
constexpr std::size_t kNoteFrames = 7349;

std::vector<int> Chime(bool descending) {
    const qt::OwnedMovie movie(NewMovie(0));
    EXPECT_EQ(MakeChime(movie.get(), kNote, kRate, kToneSixteenBit | kToneSine, descending), 0);
    const Media media = GetTrackMedia(GetMovieIndTrack(movie.get(), 1));
    EXPECT_EQ(GetTrackVolume(GetMovieIndTrack(movie.get(), 1)), kFullVolume);
    const qt::MemoryHandle data(NewHandle(0));
    std::int64_t frames = 0;
    EXPECT_EQ(GetMediaSample(media, 0, GetMediaDuration(media), data.get(), nullptr, &frames), 0);
    return BytesToSamples(qt::HandleBytes(data.get()), std::endian::big);
}

TEST(Chime, IsThreeNotesThatGoOnWithoutAStep) {
    const double notes[] = {261.63, 329.63, 392.0};
    for (const bool descending : {false, true}) {
        const std::vector<int> samples = Chime(descending);
        ASSERT_EQ(samples.size(), kSilence + 3 * kNoteFrames);
        for (std::size_t i = 0; i < kSilence; ++i) ASSERT_EQ(samples[i], 0);
        double phase = 0; // of the note's first frame
        for (std::size_t note = 0; note < 3; ++note) {
            const double step = 2 * std::numbers::pi * notes[descending ? 2 - note : note] / 44100;
            for (std::size_t i = 0; i < kNoteFrames; ++i) {
                // The frequencies are known to five digits, and as 16.16 numbers.
                ASSERT_NEAR(samples[kSilence + note * kNoteFrames + i],
                            32767 * std::sin(phase + static_cast<double>(i) * step), 40)
                    << note << " " << i;
            }
            phase += static_cast<double>(kNoteFrames) * step;
        }
    }
}

} // namespace
} // namespace corvane
