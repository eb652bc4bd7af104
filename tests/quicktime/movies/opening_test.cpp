#include "tests/quicktime/movies/movie_test.h"

#include "tests/support/files.h"

#include <algorithm>
#include <fstream>

namespace {

using namespace std::string_literals;

using namespace corvane::test;

/// A sound of 2 seconds and 17 frames that uses the whole range of levels.
constexpr const char* kMakeSource =
    "sox -R -r 44100 -n -c 2 -b 16 source.wav synth 88217s sine 200-4000 pinknoise gain -3";

struct Format {
    const char* file;
    const char* command; ///< makes the file from source.wav
    const char* importer;
    const char* data_format;
    std::int64_t frames;
    bool uncompressed;
};

/// Frames as the encoders were given them: delays and paddings are taken out again.
constexpr Format kFormats[] = {
    {"s.wav", "sox source.wav s.wav", "WAVE", "sowt", 88217, true},
    {"s8.wav", "sox -D source.wav -b 8 s8.wav", "WAVE", "raw ", 88217, true},
    {"s24.wav", "sox source.wav -b 24 s24.wav vol 0.7", "WAVE", "in24", 88217, true},
    {"s32.wav", "sox source.wav -b 32 s32.wav vol 0.7", "WAVE", "in32", 88217, true},
    {"f32.wav", "sox source.wav -e float -b 32 f32.wav vol 0.7", "WAVE", "fl32", 88217, true},
    {"f64.wav", "sox source.wav -e float -b 64 f64.wav vol 0.7", "WAVE", "fl64", 88217, true},
    {"u.wav", "sox source.wav -e mu-law u.wav", "WAVE", "ulaw", 88217, true},
    {"a.au", "sox source.wav -e a-law a.au", "ULAW", "alaw", 88217, true},
    {"s.au", "sox source.wav s.au", "ULAW", "twos", 88217, true},
    {"s.aiff", "sox source.wav s.aiff", "AIFF", "twos", 88217, true},
    {"s8.aiff", "sox -D source.wav -b 8 s8.aiff", "AIFF", "lpcm", 88217, true},
    {"s24.aifc", "sox source.wav -b 24 s24.aifc vol 0.7", "AIFC", "in24", 88217, true},
    {"s.caf", "sox source.wav s.caf", "caff", "twos", 88217, true},
    {"ima.caf", "ffmpeg -i source.wav -c:a adpcm_ima_qt ima.caf", "caff", "ima4", 1379 * 64, false},
    {"s.flac", "sox source.wav s.flac", "FLAC", "fLaC", 88217, true},
    {"cbr.mp3", "lame -b 128 source.wav cbr.mp3", "MP3 ", ".mp3", 88217, false},
    {"vbr.mp3", "lame -V 2 --id3v2-only --tt title source.wav vbr.mp3", "MP3 ", ".mp3", 88217, false},
    {"bare.mp3", "lame -t -b 96 --resample 44.1 source.wav bare.mp3", "MP3 ", ".mp3", 78 * 1152, false},
    {"s.m4a", "ffmpeg -i source.wav -c:a aac s.m4a", "M4A ", "mp4a", 88217, false},
    {"lossless.m4a", "ffmpeg -i source.wav -c:a alac lossless.m4a", "M4A ", "alac", 88217, false},
    {"s.mov", "ffmpeg -i source.wav -c:a pcm_s16be s.mov", "MooV", "twos", 88217, true},
    {"ima.mov", "ffmpeg -i source.wav -c:a adpcm_ima_qt ima.mov", "MooV", "ima4", 1379 * 64, false},
    {"wave.mov", "ffmpeg -i source.wav -c:a adpcm_ima_wav wave.mov", "MooV", "ms\0\x11", 87 * 1017, false},
    {"vorbis.mp4", "ffmpeg -i source.wav -c:a libvorbis vorbis.mp4", "mpg4", "mp4a", 88217, false},
    {"vorbis.mov", "ffmpeg -i source.wav -c:a libvorbis vorbis.mov", "MooV", "msVo", 88217, false},
    {"s.mp2", "ffmpeg -i source.wav s.mp2", "MPGA", ".mp2", 77 * 1152, false},
    {"s.aac", "ffmpeg -i source.wav s.aac", "ADTS", "mp4a", 88 * 1024, false},
    {"s.ac3", "ffmpeg -i source.wav s.ac3", "AC3 ", "ac-3", 58 * 1536, false},
    // Parts of these look like MPEG audio.
    {"s.ts", "ffmpeg -i source.wav -c:a aac -f mpegts s.ts", "MPEG", "mp4a", 88 * 1024, false},
    {"s.mpg", "ffmpeg -i source.wav -c:a mp2 -f mpeg s.mpg", "MPEG", ".mp2", 77 * 1152, false},
    {"s.dts", "ffmpeg -i source.wav -strict -2 -c:a dca s.dts", "DTS ", "dts ", 173 * 512, false},
    {"float.w64", "ffmpeg -i source.wav -c:a pcm_f32le float.w64", "W64 ", "pcm_", 88217, false},
    {"s64.nut", "ffmpeg -i source.wav -c:a pcm_s64le s64.nut", "NUT ", "pcm_", 88217, false},
    {"streamed.wv", "ffmpeg -i source.wav -c:a wavpack -f gsm streamed.wv", "WV  ", "wavp", 88217,
     false}, // 0 frames, it says
    {"streamed.flac", "ffmpeg -i source.wav -f flac - | cat >streamed.flac", "FLAC", "fLaC", 88217, false},
    {"fragments.m4a",
     "ffmpeg -i source.wav -c:a aac -movflags frag_keyframe+empty_moov -frag_duration 500000 fragments.m4a",
     "M4A ", "mp4a", 88217 + 1024, false},
    // The first of them stands where all samples do in other files.
    {"mixed.m4a", "ffmpeg -i source.wav -c:a aac -movflags frag_keyframe -frag_duration 500000 mixed.m4a",
     "M4A ", "mp4a", 88217 + 1024, false},
    // The encoder's delay in the item list alone, as some players' own files have it.
    {"gapless.m4a",
     "ffmpeg -i source.wav -c:a aac -use_editlist 0 gapless.m4a && /usr/bin/python3 -c 'import mutagen.mp4 "
     "as m; "
     "f = m.MP4(\"gapless.m4a\"); f[\"----:com.apple.iTunes:iTunSMPB\"] = "
     "m.MP4FreeForm(b\" 00000000 00000400 00000000 0000000000015899\"); f.save()'",
     "M4A ", "mp4a", 88217, false},
};

void PrintTo(const Format& format, std::ostream* out) {
    *out << format.file;
}

class Opening : public MovieTest, public testing::WithParamInterface<Format> {
protected:
    void SetUp() override {
        ASSERT_TRUE(Run(kMakeSource));
        ASSERT_TRUE(Run(GetParam().command)) << GetParam().command;
    }
};

bool IsLoaded(const std::string& library) {
    std::ifstream maps("/proc/self/maps");
    const std::string text{std::istreambuf_iterator<char>(maps), {}};
    return text.find(library) != std::string::npos;
}

TEST_P(Opening, ReportsTheFormatAndGivesTheSamplesThatOthersDecode) {
    const Format& format = GetParam();
    const bool was_loaded = IsLoaded("libavcodec"); // by another test in this process
    const qt::DataReference reference = Reference(format.file);
    OSType importer = 0;
    ASSERT_EQ(GetMovieImporterForDataRef(reference.type, reference.handle.get(), &importer), noErr);
    EXPECT_EQ(importer, qt::Code(reinterpret_cast<const char(&)[5]>(*format.importer)));
    const qt::OwnedMovie movie = Open(format.file);
    ASSERT_NE(movie, nullptr);
    const Media media = GetTrackMedia(FirstSoundTrack(movie.get()));
    ASSERT_NE(media, nullptr);
    EXPECT_EQ(GetMediaTimeScale(media), 44100);
    EXPECT_EQ(GetMediaDuration(media), format.frames);
    EXPECT_EQ(GetMovieDuration(movie.get()), format.frames);
    const auto sound = qt::ReadSoundFormat(DescriptionOf(media));
    ASSERT_TRUE(sound.has_value());
    EXPECT_EQ(sound->data_format, qt::Code(reinterpret_cast<const char(&)[5]>(*format.data_format)));
    EXPECT_EQ(sound->channels, 2U);
    EXPECT_EQ(sound->rate, 44100);

    const std::vector<std::int16_t> samples = Exported(movie.get());
    EXPECT_EQ(IsLoaded("libavcodec"), was_loaded || !format.uncompressed);
    std::vector<std::int16_t> expected = format.uncompressed && std::string(format.file) != "s.mov"
                                             ? DecodedBySox(format.file)
                                             : DecodedByFfmpeg(format.file);
    ASSERT_EQ(samples.size(), static_cast<std::size_t>(2 * format.frames));
    ASSERT_GE(expected.size(), samples.size());
    expected.resize(samples.size()); // ffmpeg leaves the padding of some formats in
    // Of samples with more than 16 bits, sox rounds halves up, this system to even numbers.
    const std::string kind = format.data_format;
    const bool wide = kind.starts_with("in") || kind.starts_with("fl");
    int different = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const int difference = std::abs(samples[i] - expected[i]);
        ASSERT_LE(difference, wide ? 1 : 0) << "at sample " << i;
        different += difference;
    }
    EXPECT_LT(different, static_cast<int>(samples.size()) / 12); // a tenth of the samples are halves
}

INSTANTIATE_TEST_SUITE_P(Formats, Opening, testing::ValuesIn(kFormats), [](const auto& format) {
    std::string name = format.param.file;
    std::ranges::replace(name, '.', '_');
    return name;
});

class OpeningOther : public MovieTest {};

/// A frame of MPEG audio that ends with the data may stand there by chance; one that begins it doesn't.
TEST_F(OpeningOther, TakesNoSingleFrameBehindOtherBytesForMpegAudio) {
    ASSERT_TRUE(
        Run("sox -n -r 44100 -c 2 s.wav synth 1 noise && lame -t -b 128 s.wav s.mp3 && "
            "head -c 417 s.mp3 >one.mp3 && (cat one.mp3; printf TAG; head -c 125 /dev/zero) >tagged.mp3 && "
            "head -c 5000 /dev/zero | tr '\\0' x >noise && "
            "cat noise one.mp3 >behind.mp3 && cat noise s.mp3 >long.mp3"));
    for (const char* name : {"one.mp3", "tagged.mp3"})
        EXPECT_EQ(GetMovieDuration(Open(name).get()), 1152) << name;
    const qt::DataReference behind = Reference("behind.mp3");
    Movie none = nullptr;
    EXPECT_EQ(NewMovieFromDataRef(&none, behind.handle.get(), behind.type), noMovieFound);
    const qt::OwnedMovie whole = Open("s.mp3");
    const qt::OwnedMovie longer = Open("long.mp3");
    ASSERT_NE(longer, nullptr);
    EXPECT_EQ(Exported(longer.get()), Exported(whole.get()));
}

TEST_F(OpeningOther, HasAllOfMpegAudioThatWasCut) {
    ASSERT_TRUE(Run("sox -n -r 44100 -c 2 s.wav synth 1 noise && lame -b 128 s.wav s.mp3 && "
                    "head -c 12000 s.mp3 >cut.mp3"));
    const std::vector<std::int16_t> whole = Exported(Open("s.mp3").get());
    const std::vector<std::int16_t> cut = Exported(Open("cut.mp3").get());
    ASSERT_EQ(cut.size(), 2U * (27 * 1152 - 576 - 529)); // less the delays of encoder and decoder
    EXPECT_TRUE(std::equal(cut.begin(), cut.end(), whole.begin()));
}

TEST_F(OpeningOther, ReadsBlocksAnywhereAsOneRunOfSamples) {
    ASSERT_TRUE(Run(kMakeSource));
    ASSERT_TRUE(Run("lame -V 4 source.wav s.mp3 && ffmpeg -i source.wav s.ac3 && "
                    "sox source.wav -c 1 -e gsm-full-rate gsm.wav"));
    for (const char* name : {"source.wav", "s.mp3", "s.ac3", "gsm.wav"}) {
        const qt::OwnedMovie movie = Open(name);
        const std::vector<std::int16_t> whole = Exported(movie.get());
        for (const TimeValue start : {0, 1, 40'000, 88'000}) {
            ASSERT_EQ(SetMovieSelection(movie.get(), start, 217), noErr);
            const qt::OwnedMovie part(CopyMovieSelection(movie.get()));
            const std::vector<std::int16_t> samples = Exported(part.get());
            ASSERT_EQ(samples.size(), 434U);
            EXPECT_TRUE(std::equal(samples.begin(), samples.end(), whole.begin() + 2 * start))
                << name << start;
        }
        const Track track = FirstSoundTrack(movie.get()); // once more behind its end
        ASSERT_EQ(InsertMediaIntoTrack(track, -1, 1000, 5000, 0x10000), noErr);
        const std::vector<std::int16_t> longer = Exported(movie.get());
        ASSERT_EQ(longer.size(), whole.size() + 10'000);
        const auto end = longer.begin() + static_cast<std::ptrdiff_t>(whole.size());
        EXPECT_TRUE(std::equal(whole.begin(), whole.end(), longer.begin()));
        EXPECT_TRUE(std::equal(end, longer.end(), whole.begin() + 2000)) << name;
    }
}

TEST_F(OpeningOther, SurroundSoundHasItsSpeakersInOneOrder) {
    ASSERT_TRUE(
        Run("sox -R -n -r 48000 -c 6 s.wav synth 1 sine 200 sine 300 sine 500 sine 60 sine 700 sine 900 vol "
            "0.2 && for file in libvorbis.ogg libopus.ogg aac.m4a; do "
            "ffmpeg -channel_layout 5.1 -i s.wav -c:a ${file%.*} -b:a 512k $file; done"));
    const std::vector<std::int16_t> expected = Exported(Open("s.wav").get());
    for (const char* name : {"libvorbis.ogg", "libopus.ogg", "aac.m4a"}) {
        const qt::OwnedMovie movie = Open(name);
        EXPECT_EQ(qt::ReadSoundFormat(DescriptionOf(GetTrackMedia(FirstSoundTrack(movie.get()))))->channels,
                  6U)
            << name;
        const std::vector<std::int16_t> samples = Exported(movie.get());
        ASSERT_EQ(samples.size(), expected.size()) << name;
        double difference = 0;
        for (std::size_t i = 0; i < samples.size(); ++i) difference += std::abs(samples[i] - expected[i]);
        EXPECT_LT(difference / static_cast<double>(samples.size()), 200) << name;
    }
}

TEST_F(OpeningOther, OpusInAMovie) {
    ASSERT_TRUE(Run(std::string(kMakeSource) + " && ffmpeg -i source.wav -c:a libopus s.mp4"));
    const std::vector<std::int16_t> samples = Exported(Open("s.mp4").get());
    const std::vector<std::int16_t> expected = DecodedByFfmpeg("s.mp4");
    ASSERT_GE(samples.size(), 2 * 88217U);
    ASSERT_LE(samples.size(), expected.size() + 4);
    double difference = 0; // two ways to convert the rate
    for (std::size_t i = 0; i < 2 * 88217; ++i) difference += std::abs(samples[i] - expected[i]);
    EXPECT_LT(difference / (2 * 88217), 60);
}

} // namespace
