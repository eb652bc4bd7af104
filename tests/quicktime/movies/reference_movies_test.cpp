#include "tests/quicktime/movies/movie_test.h"

#include "platform/quicktime/movies/movie_writer.h"
#include "platform/quicktime/movies/reference_movies.h"
#include "tests/support/files.h"

#include <algorithm>

namespace {

using namespace corvane::test;

class ReferenceMovies : public MovieTest {
protected:
    void MakeReference(const std::string& source, const std::string& name) const {
        const qt::OwnedMovie movie = Open(source);
        const qt::DataReference reference = Reference(name);
        DataHandler handler = nullptr;
        Movie made = nullptr;
        ASSERT_EQ(CreateMovieStorage(reference.handle.get(), reference.type, kMoviePlayer, -1,
                                     createMovieFileDeleteCurFile, &handler, &made),
                  noErr);
        const qt::OwnedStorage storage(handler);
        const qt::OwnedMovie target(made);
        ASSERT_EQ(qt::AddReferenceTracks(movie.get(), made), noErr);
        ASSERT_EQ(AddMovieToStorage(made, handler), noErr);
    }

    /// Unix path of the file that the movie's sound lies in.
    static std::string SourceOf(Movie movie) {
        const Track track = GetMovieIndTrackType(movie, 1, qt::Code("ears"), movieTrackCharacteristic);
        qt::DataReference reference;
        std::int32_t attributes = 0;
        if (GetMediaDataRef(GetTrackMedia(track), 1, reference, &attributes) != noErr) return {};
        EXPECT_EQ(attributes, 0);
        return qt::UnixPathOf(reference.handle.get(), reference.type);
    }
};

TEST_F(ReferenceMovies, StandForTheSamplesOfTheirSource) {
    ASSERT_TRUE(Run("sox -R -r 44100 -n -c 2 -b 16 s.wav synth 2 pinknoise gain -3"));
    ASSERT_TRUE(Run("sox s.wav s.aiff && lame -V 2 s.wav s.mp3 && ffmpeg -i s.wav -c:a aac s.m4a"));
    for (const char* source : {"s.wav", "s.aiff", "s.mp3", "s.m4a"}) {
        const std::string before = ReadBytes(Path(source));
        MakeReference(source, "s_ref.mov");
        EXPECT_EQ(ReadBytes(Path(source)), before);
        EXPECT_LT(ReadBytes(Path("s_ref.mov")).size(), 8000U) << source;
        const qt::OwnedMovie movie = Open("s_ref.mov");
        EXPECT_EQ(qt::FirstText(movie.get()), qt::kPlaceholderText);
        EXPECT_EQ(SourceOf(movie.get()), Path(source));
        EXPECT_EQ(GetMovieDuration(movie.get()), 88200) << source;
        Fixed width = 0;
        Fixed height = 0;
        const Track text = GetMovieIndTrackType(movie.get(), 1, qt::Code("text"), movieTrackMediaType);
        GetTrackDimensions(text, &width, &height);
        EXPECT_EQ(width >> 16, 320);
        EXPECT_EQ(height >> 16, 200);
        EXPECT_EQ(GetTrackDuration(text), 88200);
        const std::vector<std::int16_t> samples = Exported(movie.get());
        EXPECT_EQ(samples, Exported(Open(source).get())) << source;
        ASSERT_TRUE(Run("ffprobe s_ref.mov"));
        ASSERT_TRUE(Run("ffmpeg -y -enable_drefs 1 -i s_ref.mov -map 0:a -c:a pcm_s16le through.wav"));
        std::vector<std::int16_t> through = DecodedBySox("through.wav");
        ASSERT_GE(through.size(), samples.size());
        through.resize(samples.size()); // padding of the last packet
        EXPECT_EQ(through, samples) << source;
    }
}

TEST_F(ReferenceMovies, MoveTogetherWithTheirSource) {
    ASSERT_TRUE(Run("mkdir -p old/sub new && sox -R -r 44100 -n -c 2 -b 16 old/sub/s.wav synth 1 pinknoise"));
    MakeReference("old/sub/s.wav", "old/s_ref.mov");
    ASSERT_TRUE(Run("cp -r old/. new/ && sox -r 44100 -n -c 2 -b 16 old/sub/s.wav synth 1 sine 100"));
    EXPECT_EQ(SourceOf(Open("new/s_ref.mov").get()), Path("new/sub/s.wav"));
    ASSERT_TRUE(Run("rm -r new/sub"));
    EXPECT_EQ(SourceOf(Open("new/s_ref.mov").get()), Path("old/sub/s.wav"));
    ASSERT_TRUE(Run("mv old/sub/s.wav new/s.wav"));
    EXPECT_EQ(SourceOf(Open("new/s_ref.mov").get()), Path("new/s.wav"));
    ASSERT_TRUE(Run("rm new/s.wav"));
    const qt::OwnedMovie lost = Open("new/s_ref.mov");
    EXPECT_EQ(SourceOf(lost.get()), "");
    EXPECT_EQ(qt::FirstText(lost.get()), qt::kPlaceholderText);
    EXPECT_EQ(Export(lost.get(), "out.wav"), fnfErr);
}

TEST_F(ReferenceMovies, FollowAddressesOfFilesToo) {
    const std::string movie = "/data/movies/m.mov";
    const auto read = [&](const std::string& url) {
        return qt::ReadUrl(std::as_bytes(std::span(url)), movie);
    };
    EXPECT_EQ(read("clip%20one.wav"), std::vector<std::string>{"/data/movies/clip one.wav"});
    EXPECT_EQ(read("file:///x/a.wav"), (std::vector<std::string>{"/data/movies/a.wav", "/x/a.wav"}));
    EXPECT_EQ(read("file://localhost/x/a.wav"), (std::vector<std::string>{"/data/movies/a.wav", "/x/a.wav"}));
    EXPECT_TRUE(read("http://example.com/a.wav").empty());
    EXPECT_TRUE(read("").empty());
}

TEST_F(ReferenceMovies, AliasesNameFilesAcrossFolders) {
    const struct {
        const char* target;
        const char* movie;
        const char* seen_from; ///< the movie's place when the alias is read
        const char* first;
    } cases[] = {
        {"/a/b/s.wav", "/a/b/m.mov", "/z/m.mov", "/z/s.wav"},
        {"/a/b/c/s.wav", "/a/m.mov", "/z/y/m.mov", "/z/y/b/c/s.wav"},
        {"/a/x/s.wav", "/a/b/c/m.mov", "/1/2/3/m.mov", "/1/2/3/../../x/s.wav"},
        {"/top.wav", "/a/m.mov", "/q/a/m.mov", "/q/a/../top.wav"},
        {"/a/Ünï:cödé.wav", "/a/m.mov", "/z/m.mov", "/z/Ünï:cödé.wav"},
    };
    for (const auto& [target, movie, seen_from, first] : cases) {
        const std::vector<std::string> paths = qt::ReadAlias(qt::MakeAlias(target, movie), seen_from);
        ASSERT_GE(paths.size(), 2U) << target;
        EXPECT_EQ(paths.front(), first);
        EXPECT_EQ(paths.back(), target);
    }
    EXPECT_TRUE(qt::ReadAlias({}, "/a/m.mov").empty());
}

TEST_F(ReferenceMovies, OneThatNamesItselfIsReadLikeAnyOther) {
    ASSERT_TRUE(Run("sox -R -r 44100 -n -c 2 -b 16 s.wav synth 1 pinknoise"));
    MakeReference("s.wav", "s_ref.mov");
    // A movie takes the source's place: its samples are then bytes of itself, or beyond its end.
    ASSERT_TRUE(Run("mv s_ref.mov s.wav"));
    const qt::OwnedMovie movie = Open("s.wav");
    EXPECT_EQ(qt::FirstText(movie.get()), qt::kPlaceholderText);
    EXPECT_EQ(Export(movie.get(), "out.wav"), noErr);
}

} // namespace
