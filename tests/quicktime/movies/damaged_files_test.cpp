#include "platform/quicktime/movies/movie_model.h"
#include "tests/quicktime/movies/movie_test.h"
#include "tests/support/files.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

/// libsndfile 1.2.0 forgets a block of some KB when it gives up on a damaged Ogg file.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer looks for this name
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:vorbis_info_init\n";
}

namespace {

using namespace corvane::test;

class DamagedFiles : public MovieTest {
protected:
    /// Opens and exports the bytes as a file; whatever comes of it.
    void Use(const std::string& name, const std::string& bytes) const {
        WriteBytes(Path(name), bytes);
        const qt::DataReference reference = Reference(name);
        Movie opened = nullptr;
        const OSErr code = NewMovieFromDataRef(&opened, reference.handle.get(), reference.type);
        const qt::OwnedMovie movie(opened);
        ASSERT_EQ(code == noErr, movie != nullptr);
        if (movie == nullptr) return;
        const TimeScale scale = GetMovieTimeScale(movie.get());
        ASSERT_GT(scale, 0);
        if (GetMovieDuration(movie.get()) > 60 * TimeValue{scale})
            SetMovieSelection(movie.get(), 0, 2 * scale);
        TimeValue start = 0;
        TimeValue duration = 0;
        GetMovieSelection(movie.get(), &start, &duration);
        const qt::OwnedMovie part(duration > 0 ? CopyMovieSelection(movie.get()) : nullptr);
        const OSErr exported = Export(part != nullptr ? part.get() : movie.get(), "out.wav");
        EXPECT_EQ(exported == noErr, IsThere(Path("out.wav")));
        if (exported == noErr) std::remove(Path("out.wav").c_str());
    }
};

TEST_F(DamagedFiles, EndInASoundOrACode) {
    ASSERT_TRUE(Run("sox -R -r 8000 -n -c 2 -b 16 s.wav synth 0.3 pinknoise gain -3"));
    ASSERT_TRUE(
        Run("sox s.wav s.aiff && sox s.wav s.au && sox s.wav s.caf && sox s.wav s.flac && sox s.wav s.ogg && "
            "sox s.wav -e ima-adpcm ima.wav && sox s.wav -e gsm-full-rate gsm.wav && lame --resample 16 "
            "s.wav s.mp3 && "
            "ffmpeg -i s.wav -c:a aac s.m4a && ffmpeg -i s.wav -c:a alac alac.m4a && "
            "ffmpeg -i s.wav -c:a pcm_s16be s.mov && ffmpeg -i s.wav -c:a adpcm_ima_qt ima.mov && "
            "ffmpeg -i s.wav s.aac"));
    const auto begin = std::chrono::steady_clock::now();
    for (const char* name : {"s.wav", "s.aiff", "s.au", "s.caf", "s.flac", "s.ogg", "ima.wav", "gsm.wav",
                             "s.mp3", "s.m4a", "alac.m4a", "s.mov", "ima.mov", "s.aac"}) {
        const std::string bytes = ReadBytes(Path(name));
        const std::string damaged = std::string("damaged-") + name;
        for (const double part : {0.0, 0.001, 0.01, 0.02, 0.1, 0.5, 0.9, 0.99})
            Use(damaged, bytes.substr(0, static_cast<std::size_t>(part * static_cast<double>(bytes.size()))));
        std::uint32_t random = 12345;
        for (int round = 0; round < 40; ++round) {
            std::string flipped = bytes;
            for (int i = 0; i < 1 + round; ++i) {
                random = random * 1664525 + 1013904223;
                // Mostly where headers are: at both ends.
                std::size_t at = random >> 8;
                at = round % 2 == 0 ? at % bytes.size() : at % std::min<std::size_t>(300, bytes.size());
                if (round % 4 == 3) at = bytes.size() - 1 - at;
                flipped[at] = static_cast<char>(flipped[at] ^ (1 << (random & 7)));
            }
            Use(damaged, flipped);
        }
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::minutes(3));
}

TEST_F(DamagedFiles, PacketsThatGiveNothingAreSilence) {
    ASSERT_TRUE(Run("sox -R -n -r 48000 s.wav synth 5 pinknoise && ffmpeg -i s.wav -c:a aac s.m4a"));
    std::string bytes = ReadBytes(Path("s.m4a"));
    constexpr std::size_t kKept = 4000; // some packets
    const std::size_t data = bytes.find("mdat") + 4 + kKept;
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(data),
              bytes.begin() + static_cast<std::ptrdiff_t>(bytes.find("moov") - 4),
              '\xE0'); // "nothing follows"
    WriteBytes(Path("s.m4a"), bytes);
    const qt::OwnedMovie movie = Open("s.m4a");
    const auto opened = qt::OpenFrameReader(*GetTrackMedia(FirstSoundTrack(movie.get())));
    ASSERT_EQ(opened.code, noErr);
    std::vector<float> frames(1000, 1.0F);
    const qt::FramesRead read = opened.reader->Read(3 * 48000, std::as_writable_bytes(std::span(frames)));
    EXPECT_EQ(read.frames, 1000); // found without a look at all packets up to the end
    EXPECT_EQ(frames, std::vector<float>(1000));
}

TEST_F(DamagedFiles, NothingButTags) {
    ASSERT_TRUE(Run("sox -n -r 48000 -c 2 s.wav synth 0.3 sine 440 && ffmpeg -i s.wav -c:a libopus s.mka && "
                    "sox s.wav s.flac"));
    const auto element = [](std::string_view id, const std::string& content) {
        std::string bytes(id);
        bytes += '\x01';
        for (int shift = 48; shift >= 0; shift -= 8)
            bytes += static_cast<char>(content.size() >> shift & 0xFF);
        return bytes + content;
    };
    std::string tags;
    for (int i = 0; i < 200'000; ++i)
        tags += element("\x67\xC8", element("\x45\xA3", "K" + std::to_string(i)) + element("\x44\x87", "x"));
    std::string matroska = ReadBytes(Path("s.mka"));
    const std::size_t segment = matroska.find("\x18\x53\x80\x67");
    ASSERT_NE(segment, std::string::npos);
    matroska.replace(segment + 4, 8, "\x01\xFF\xFF\xFF\xFF\xFF\xFF\xFF"); // no size
    matroska.insert(segment + 12, element("\x12\x54\xC3\x67", element("ss", tags)));
    WriteBytes(Path("tags.mka"), matroska);

    // All of one name; and more are announced, which libsndfile refuses.
    constexpr std::size_t kFirstBlockEnd = 42;
    std::string comments("\1\0\0\0v\xFF\xFF\xFF\0", 9);
    for (int i = 0; i < 1'000'000; ++i) comments += std::string("\3\0\0\0A=b", 7);
    std::string flac = ReadBytes(Path("s.flac"));
    std::string header = "\4";
    for (const int shift : {16, 8, 0}) header += static_cast<char>(comments.size() >> shift & 0xFF);
    flac.insert(kFirstBlockEnd, header + comments);
    WriteBytes(Path("tags.flac"), flac);

    const auto begin = std::chrono::steady_clock::now();
    for (const char* name : {"tags.mka", "tags.flac"})
        EXPECT_NEAR(static_cast<double>(GetMovieDuration(Open(name).get())), 0.3 * 48000, 1000) << name;
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::minutes(1));
}

TEST_F(DamagedFiles, HeadersThatClaimMoreThanThereIs) {
    ASSERT_TRUE(Run("sox -R -r 44100 -n -c 2 -b 16 s.wav synth 1000s pinknoise"));
    std::string wave = ReadBytes(Path("s.wav"));
    for (const std::size_t field : {4U, 40U}) wave.replace(field, 4, "\xF0\xFF\xFF\x7F");
    WriteBytes(Path("claims.wav"), wave);
    EXPECT_EQ(GetMovieDuration(Open("claims.wav").get()), 1000);
    for (const std::size_t field : {22U, 24U}) { // no channels, no rate
        std::string none = ReadBytes(Path("s.wav"));
        const std::size_t size = field == 22 ? 2 : 4;
        none.replace(field, size, size, '\0');
        EXPECT_EQ(OpeningCode("none.wav", none), badFileFormat);
    }
    ASSERT_TRUE(Run("sox s.wav s.flac"));
    std::string flac = ReadBytes(Path("s.flac"));
    flac.replace(21, 2, "\xF7\xFF"); // of the 36 bits that count the frames
    WriteBytes(Path("claims.flac"), flac);
    EXPECT_EQ(GetMovieDuration(Open("claims.flac").get()), 1000);
    ASSERT_TRUE(Run("sox -r 44100 -n -c 2 -b 16 empty.wav trim 0 0"));
    const qt::OwnedMovie empty = Open("empty.wav");
    EXPECT_EQ(GetMovieDuration(empty.get()), 0);
    EXPECT_EQ(Exported(empty.get()).size(), 0U);
    EXPECT_EQ(ReadBytes(Path("exported.wav")).size(), 44U);
}

constexpr const char* kMakeMovie =
    "sox -R -r 44100 -n -c 2 -b 16 s.wav synth 1000s pinknoise && ffmpeg -i s.wav -c:a pcm_s16le s.mov";

TEST_F(DamagedFiles, AnEditListCannotBeginBeforeAllTime) {
    ASSERT_TRUE(Run(kMakeMovie));
    std::string movie = ReadBytes(Path("s.mov"));
    const std::size_t edits = movie.find("elst");
    ASSERT_NE(edits, std::string::npos);
    movie[edits + 4] = 1; // the wide kind of list, whose entries are 8 bytes longer
    movie.replace(edits + 12, 12, std::string("\0\0\0\0\0\0\3\xE8\x80\0\0\0\0\0\0\0\0\1\0\0", 20));
    for (const char* atom : {"moov", "trak", "edts", "elst"}) {
        char& size = movie[movie.find(atom) - 1];
        ASSERT_LT(static_cast<unsigned char>(size), 248) << atom;
        size = static_cast<char>(size + 8);
    }
    WriteBytes(Path("early.mov"), movie);
    EXPECT_EQ(GetMovieDuration(Open("early.mov").get()), 0) << "nothing of the media is before its beginning";
}

TEST_F(DamagedFiles, ASampleTableCannotClaimMoreThanItsFileHolds) {
    ASSERT_TRUE(Run(kMakeMovie));
    std::string movie = ReadBytes(Path("s.mov"));
    const std::size_t map = movie.find("stsc");
    ASSERT_NE(map, std::string::npos);
    movie.replace(map + 16, 4, "\xFF\xFF\xFF\xFF");
    WriteBytes(Path("long.mov"), movie);
    const qt::OwnedMovie opened = Open("long.mov");
    const Media media = GetTrackMedia(FirstSoundTrack(opened.get()));
    EXPECT_LE(GetMediaDuration(media) * 4, static_cast<TimeValue>(movie.size()));
    const qt::MemoryHandle data(NewHandle(0));
    std::int64_t read = 0;
    ASSERT_EQ(GetMediaSample(media, 0, TimeValue{1} << 40, data.get(), nullptr, &read), noErr);
    EXPECT_LE(GetHandleSize(data.get()), static_cast<Size>(movie.size()));
}

} // namespace
