#include "tests/quicktime/movies/movie_test.h"

#include "tests/support/files.h"

#include <algorithm>
#include <cstring>

namespace {

using namespace corvane::test;

class MediaSamples : public MovieTest {};

TEST_F(MediaSamples, BlocksAreReadAcrossWhatWasAddedApart) {
    const qt::OwnedMovie movie(NewMovie(0));
    const Track track = NewMovieTrack(movie.get(), 0, 0, kFullVolume);
    const Media media = NewTrackMedia(track, qt::Code("soun"), 44100, nullptr, qt::Code("hndl"));
    const qt::MemoryHandle stereo = HandleOf(qt::DescribePcm(kStereo));
    const std::vector<std::int16_t> samples = Noise(2000, 1);
    const auto bytes = std::as_bytes(std::span(samples));
    EXPECT_EQ(AddMediaSample(media, bytes, 1, stereo.get(), 1000), invalidEditState);
    ASSERT_EQ(BeginMediaEdits(media), noErr);
    EXPECT_EQ(BeginMediaEdits(media), invalidEditState);
    ASSERT_EQ(AddMediaSample(media, bytes.first(400), 1, stereo.get(), 100), noErr);
    ASSERT_EQ(AddMediaSample(media, bytes.subspan(400), 1, stereo.get(), 900), noErr);
    EXPECT_EQ(AddMediaSample(media, bytes.first(401), 1, stereo.get(), 100), paramErr);
    EXPECT_EQ(AddMediaSample(media, bytes.first(400), 0, stereo.get(), 100), paramErr);
    EXPECT_EQ(AddMediaSample(media, {}, 1, stereo.get(), 0), noErr);
    qt::PcmLayout big_endian = kStereo;
    big_endian.big_endian = true;
    const qt::MemoryHandle other = HandleOf(qt::DescribePcm(big_endian));
    ASSERT_EQ(AddMediaSample(media, bytes.first(40), 1, other.get(), 10), noErr);
    ASSERT_EQ(EndMediaEdits(media), noErr);
    EXPECT_EQ(GetMediaDuration(media), 1010);
    EXPECT_EQ(GetMediaSampleDescriptionCount(media), 2);

    const qt::MemoryHandle data(NewHandle(0));
    const qt::MemoryHandle description(NewHandle(0));
    std::int64_t read = 0;
    ASSERT_EQ(GetMediaSample(media, 50, 900, data.get(), description.get(), &read), noErr);
    EXPECT_EQ(read, 900);
    EXPECT_TRUE(std::ranges::equal(qt::HandleBytes(data.get()), bytes.subspan(200, 3600)));
    EXPECT_TRUE(std::ranges::equal(qt::HandleBytes(description.get()), qt::HandleBytes(stereo.get())));
    ASSERT_EQ(GetMediaSample(media, 900, 500, data.get(), nullptr, &read), noErr);
    EXPECT_EQ(read, 100); // the description changes there
    EXPECT_EQ(GetHandleSize(data.get()), 400);
    EXPECT_EQ(GetMediaSample(media, 1010, 1, data.get(), nullptr, &read), invalidTime);
    EXPECT_EQ(GetMediaSample(media, 0, -1, data.get(), nullptr, &read), paramErr);
    qt::DataReference reference;
    std::int32_t attributes = -1;
    ASSERT_EQ(GetMediaDataRef(media, 1, reference, &attributes), noErr);
    EXPECT_EQ(reference.type, qt::Code("hndl"));
    EXPECT_EQ(GetMediaDataRef(media, 2, reference, &attributes), badDataRefIndex);
}

TEST_F(MediaSamples, AMovieFileKeepsWhatIsAddedAndOthersReadIt) {
    const qt::DataReference reference = Reference("made.mov");
    DataHandler handler = nullptr;
    Movie made = nullptr;
    ASSERT_EQ(CreateMovieStorage(reference.handle.get(), reference.type, kMoviePlayer, -1,
                                 createMovieFileDeleteCurFile | createMovieFileDontCreateResFile, &handler,
                                 &made),
              noErr);
    const qt::OwnedStorage storage(handler);
    const qt::OwnedMovie movie(made);
    const Track track = NewMovieTrack(made, 0, 0, kFullVolume);
    const Media media = NewTrackMedia(track, qt::Code("soun"), 44100, nullptr, 0);
    ASSERT_NE(media, nullptr);
    const std::vector<std::int16_t> samples = Noise(2 * 44117, 2);
    AddSamples(media, samples);
    ASSERT_EQ(InsertMediaIntoTrack(track, 0, 0, GetMediaDuration(media), kNormalRate), noErr);
    EXPECT_EQ(Exported(made), samples); // a 600th of a second is no limit to what is exact
    ASSERT_EQ(AddMovieToStorage(made, handler), noErr);

    EXPECT_EQ(DecodedByFfmpeg("made.mov"), samples);
    const qt::OwnedMovie again = Open("made.mov");
    EXPECT_EQ(GetMovieTimeScale(again.get()), 44100);
    EXPECT_EQ(GetMovieDuration(again.get()), 44117);
    EXPECT_EQ(Exported(again.get()), samples);
    qt::DataReference found;
    std::int32_t attributes = 0;
    ASSERT_EQ(GetMediaDataRef(GetTrackMedia(GetMovieIndTrack(again.get(), 1)), 1, found, &attributes), noErr);
    EXPECT_EQ(attributes, dataRefSelfReference);
    EXPECT_EQ(qt::UnixPathOf(found.handle.get(), found.type), Path("made.mov"));
    DataHandler second = nullptr;
    EXPECT_EQ(CreateMovieStorage(reference.handle.get(), reference.type, 0, -1, 0, &second, &made), dupFNErr);
    EXPECT_EQ(made, nullptr);
}

TEST_F(MediaSamples, FlatteningBringsForeignSamplesIn) {
    ASSERT_TRUE(Run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 1 pinknoise"));
    const qt::OwnedMovie movie = Open("a.wav");
    const qt::DataReference reference = Reference("flat.mov");
    const qt::OwnedMovie flat(
        FlattenMovieDataToDataRef(movie.get(), 0, reference.handle.get(), reference.type, 0, -1, 0));
    ASSERT_NE(flat, nullptr);
    const std::vector<std::int16_t> samples = WaveSamples(Path("a.wav"));
    ASSERT_TRUE(Run("rm a.wav"));
    EXPECT_EQ(Exported(flat.get()), samples);
}

} // namespace
