#include "tests/quicktime/movies/movie_test.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace {

using namespace corvane::test;

class MovieEditing : public MovieTest {
protected:
    /// `frames` frames whose left samples count from `first` on; the right ones are their negatives.
    static qt::OwnedMovie Counting(int first, int frames) {
        std::vector<std::int16_t> samples;
        for (int i = first; i < first + frames; ++i) {
            samples.push_back(static_cast<std::int16_t>(i));
            samples.push_back(static_cast<std::int16_t>(-i));
        }
        return MovieOf(samples);
    }

    std::vector<int> Left(Movie movie) const {
        std::vector<int> left;
        const std::vector<std::int16_t> samples = Exported(movie);
        for (std::size_t i = 0; i < samples.size(); i += 2) left.push_back(samples[i]);
        return left;
    }
};

std::vector<int> Range(int first, int count) {
    std::vector<int> values(static_cast<std::size_t>(count));
    std::iota(values.begin(), values.end(), first);
    return values;
}

TEST_F(MovieEditing, SelectionsHaveLimits) {
    const qt::OwnedMovie movie = Counting(0, 4410);
    const TimeValue end = GetMovieDuration(movie.get());
    TimeValue start = 0;
    TimeValue duration = 0;
    ASSERT_EQ(SetMovieSelection(movie.get(), 10, 2 * end), noErr);
    GetMovieSelection(movie.get(), &start, &duration);
    EXPECT_EQ(start, 10);
    EXPECT_EQ(duration, end - 10);
    EXPECT_EQ(SetMovieSelection(movie.get(), 10, -1), invalidDuration);
    EXPECT_EQ(SetMovieSelection(movie.get(), -1, 5), invalidTime);
    GetMovieSelection(movie.get(), &start, &duration);
    EXPECT_EQ(start, 10);
    ASSERT_EQ(SetMovieSelection(movie.get(), 2 * end, 5), noErr);
    EXPECT_EQ(CopyMovieSelection(movie.get()), nullptr);
    EXPECT_EQ(GetMoviesError(), invalidDuration);
}

TEST_F(MovieEditing, PastingReplacesTheSelectionAndMovesTheRest) {
    ASSERT_TRUE(Run("sox -D -r 44100 -n -c 2 -b 16 zero.wav trim 0 10s"));
    const qt::OwnedMovie movie = Open("zero.wav"); // 10 frames of silence, in units of frames
    const qt::OwnedMovie source = Counting(1, 44100 / 600 * 2);
    ASSERT_EQ(SetMovieSelection(movie.get(), 4, 2), noErr);
    ASSERT_EQ(PasteMovieSelection(movie.get(), source.get()), noErr);
    std::vector<int> expected(4, 0);
    const std::vector<int> middle = Range(1, 146);
    expected.insert(expected.end(), middle.begin(), middle.end());
    const std::vector<int> played = Left(movie.get());
    ASSERT_GE(played.size(), expected.size() + 4);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), played.begin()));
    EXPECT_TRUE(std::all_of(played.begin() + 150, played.end(), [](int sample) { return sample == 0; }));
    TimeValue start = 0;
    TimeValue duration = 0;
    GetMovieSelection(movie.get(), &start, &duration);
    EXPECT_EQ(start, 4);
    EXPECT_EQ(duration, 147); // two units of a 600th, as frames
}

TEST_F(MovieEditing, AMovieCanBePastedIntoItself) {
    ASSERT_TRUE(Run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 1000s pinknoise"));
    const qt::OwnedMovie movie = Open("a.wav");
    ASSERT_EQ(SetMovieSelection(movie.get(), 1000, 0), noErr);
    ASSERT_EQ(PasteMovieSelection(movie.get(), movie.get()), noErr);
    std::vector<std::int16_t> twice = WaveSamples(Path("a.wav"));
    const std::vector<std::int16_t> once = twice;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(Exported(movie.get()), twice);
}

TEST_F(MovieEditing, CopiesOutliveTheMovie) {
    qt::OwnedMovie movie = Counting(100, 600);
    ASSERT_EQ(SetMovieSelection(movie.get(), 0, GetMovieDuration(movie.get())), noErr);
    const qt::OwnedMovie copy(CopyMovieSelection(movie.get()));
    movie.reset();
    EXPECT_EQ(Left(copy.get()), Range(100, 600));
}

TEST_F(MovieEditing, InsertedPartsReplaceWhatTheTrackHeld) {
    const qt::OwnedMovie movie = Counting(1, 882); // 12 units of a 600th
    const Track track = GetMovieIndTrack(movie.get(), 1);
    // Units 2 to 4 now play the media from frame 441 on.
    ASSERT_EQ(InsertMediaIntoTrack(track, 2, 441, 147, kNormalRate), noErr);
    const std::vector<int> played = Left(movie.get());
    ASSERT_EQ(played.size(), 882U);
    EXPECT_EQ(played[146], 147);
    EXPECT_EQ(played[147], 442);
    EXPECT_EQ(played[293], 588);
    EXPECT_EQ(played[294], 295);
    EXPECT_EQ(InsertMediaIntoTrack(track, 0, 800, 100, kNormalRate), invalidDuration);
    EXPECT_EQ(InsertMediaIntoTrack(track, 0, 0, 10, 0), invalidTime);
}

TEST_F(MovieEditing, TracksAreFoundByTypeAndCharacteristic) {
    const qt::OwnedMovie movie = Counting(0, 100);
    const Track text = NewMovieTrack(movie.get(), 320 << 16, 200 << 16, 0);
    ASSERT_NE(NewTrackMedia(text, qt::Code("text"), 600, nullptr, qt::Code("hndl")), nullptr);
    const Track sound = GetMovieIndTrack(movie.get(), 1);
    EXPECT_EQ(GetMovieIndTrackType(movie.get(), 1, qt::Code("ears"), movieTrackCharacteristic), sound);
    EXPECT_EQ(GetMovieIndTrackType(movie.get(), 2, qt::Code("ears"), movieTrackCharacteristic), nullptr);
    EXPECT_EQ(GetMoviesError(), noErr);
    EXPECT_EQ(GetMovieIndTrackType(movie.get(), 1, qt::Code("eyes"), movieTrackCharacteristic), text);
    EXPECT_EQ(GetMovieIndTrackType(movie.get(), 1, qt::Code("text"), movieTrackMediaType), text);
    SetTrackEnabled(sound, false);
    EXPECT_EQ(GetMovieIndTrackType(movie.get(), 1, qt::Code("ears"),
                                   movieTrackCharacteristic | movieTrackEnabledOnly),
              nullptr);
    EXPECT_EQ(Export(movie.get(), "none.wav"), noSoundTrackInMovieErr);
    DisposeMovieTrack(text);
    EXPECT_EQ(GetMovieTrackCount(movie.get()), 1);
}

} // namespace
