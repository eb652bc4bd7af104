// Every row of the table of sound exporters, with all that it offers: files that other programs decode to the
// sound they were made of.
#include "platform/quicktime/movie_exporters/sound_exporter.h"
#include "platform/quicktime/movies/movie_model.h"

#include "tests/quicktime/movies/movie_test.h"
#include "tests/support/files.h"
#include "tests/support/small_disk.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using namespace corvane::test;
using Samples = std::vector<std::int16_t>;

constexpr std::size_t kFrames = 66150; // a second and a half

class SoundExporters : public MovieTest {
protected:
    SoundExporters() {
        EXPECT_TRUE(
            Run("sox -R -r 44100 -n -c 2 -b 16 s.wav synth 66150s sine 440 sine 1250 vol 0.4 tremolo 3"));
    }

    static qt::OpenComponent Exporter(const qt::SoundExporterRow& row, const qt::SoundSettings& settings) {
        qt::OpenComponent exporter = OpenComponentOf(qt::kMovieExporter, row.subtype);
        std::string answer = "set:" + qt::SettingsText(row.choices, settings);
        std::ranges::replace(answer, '\r', ',');
        fm::CurrentSession().answers = {answer};
        bool cancelled = true;
        EXPECT_EQ(MovieExportDoUserDialog(exporter.get(), nullptr, &cancelled), noErr);
        EXPECT_FALSE(cancelled);
        return exporter;
    }

    /// With the usual settings of the format.
    static qt::OpenComponent Exporter(const qt::SoundExporterRow& row) {
        return Exporter(row, qt::UsualSettings(row.choices));
    }
};

/// How alike two sounds are, -1 to 1, and how loud the second is beside the first.
struct Likeness {
    double correlation = 0;
    double level = 0;
};
Likeness Compare(const Samples& source, const Samples& other) {
    double cross = 0;
    double first = 0;
    double second = 0;
    for (std::size_t i = 0; i < std::min(source.size(), other.size()); ++i) {
        const double x = source[i];
        const double y = other[i];
        cross += x * y;
        first += x * x;
        second += y * y;
    }
    return {cross / std::sqrt(first * second), std::sqrt(second / first)};
}

/// The largest difference between a sample and what these encodings make of it.
int StepOf(qt::SampleEncoding encoding) {
    switch (encoding) {
    case qt::SampleEncoding::kUnsigned8:
    case qt::SampleEncoding::kSigned8: return 128;
    case qt::SampleEncoding::kMuLaw:
    case qt::SampleEncoding::kALaw: return 512; // a half of the step at these levels, and rounding
    default: return 0;
    }
}

bool IsLossy(OSType format) {
    constexpr std::array kLossy = {qt::Code("ima4"), qt::Code("M4A "), qt::Code("MP3 "), qt::Code("Ogg "),
                                   qt::Code("Opus")};
    return std::ranges::find(kLossy, format) != kLossy.end();
}

TEST_F(SoundExporters, WriteWhatOthersDecodeToTheSource) {
    const Samples source = DecodedBySox("s.wav");
    const qt::OwnedMovie movie = Open("s.wav");
    for (const qt::SoundExporterRow& row : qt::SoundExporters()) {
        qt::SoundSettings settings = qt::UsualSettings(row.choices);
        std::vector<qt::SampleEncoding> encodings(row.choices.encodings.begin(), row.choices.encodings.end());
        if (encodings.empty()) encodings.push_back(settings.encoding);
        for (const qt::SampleEncoding encoding : encodings) {
            for (const bool other_order : {false, true}) {
                if (other_order && row.choices.order != qt::ByteOrder::kEither) continue;
                SCOPED_TRACE(std::string(row.name) + " " + std::to_string(static_cast<int>(encoding)));
                settings.encoding = encoding;
                settings.big_endian ^= other_order;
                const qt::OpenComponent exporter = Exporter(row, settings);
                ASSERT_EQ(ExportWith(exporter.get(), movie.get(), "out"), noErr);
                const Samples decoded = DecodedByFfmpeg("out");
                const qt::OwnedMovie reopened = Open("out");
                ASSERT_NE(reopened, nullptr);
                const std::uint32_t created = GetTrackCreationTime(FirstSoundTrack(reopened.get()));
                EXPECT_NEAR(created, qt::CurrentMovieTime(), 600);
                const Samples ours = Exported(reopened.get());
                if (IsLossy(row.subtype)) {
                    const Likeness likeness = Compare(source, decoded);
                    EXPECT_GT(likeness.correlation, 0.99);
                    EXPECT_NEAR(likeness.level, 1, 0.06); // LAME turns some bit rates down a little
                    EXPECT_GT(Compare(source, ours).correlation, 0.99);
                    EXPECT_NEAR(static_cast<double>(ours.size()), 2 * kFrames, 128);
                    continue;
                }
                ASSERT_EQ(decoded.size(), source.size());
                ASSERT_EQ(ours.size(), source.size());
                const int step = StepOf(encoding);
                for (std::size_t i = 0; i < source.size(); ++i) {
                    ASSERT_LE(std::abs(decoded[i] - source[i]), step) << i;
                    ASSERT_LE(std::abs(ours[i] - source[i]), step) << i;
                }
            }
        }
    }
}

TEST_F(SoundExporters, KeepTwentyFourBits) {
    ASSERT_TRUE(Run("sox -R -r 48000 -n -c 2 -b 24 deep.wav synth 9601s pinknoise vol 0.001 && "
                    "ffmpeg -y -i deep.wav -f s24le deep.raw"));
    const qt::OwnedMovie movie = Open("deep.wav");
    for (const qt::SoundExporterRow& row : qt::SoundExporters()) {
        qt::SoundSettings settings = qt::UsualSettings(row.choices);
        settings.encoding = qt::SampleEncoding::kSigned24;
        settings.rate = 48000;
        if (row.choices.encodings.empty() || !qt::Offers(row.choices, settings)) continue;
        const qt::OpenComponent exporter = Exporter(row, settings);
        ASSERT_EQ(ExportWith(exporter.get(), movie.get(), "out"), noErr) << row.name;
        EXPECT_TRUE(Run("ffmpeg -y -i out -f s24le out.raw && cmp deep.raw out.raw")) << row.name;
    }
}

TEST_F(SoundExporters, ChangeRateAndChannels) {
    const qt::OwnedMovie movie = Open("s.wav");
    for (const qt::SoundExporterRow& row : qt::SoundExporters()) {
        qt::SoundSettings settings = qt::UsualSettings(row.choices);
        settings.channels = 1;
        settings.rate = row.choices.usual_rate == 44100 ? 22050 : 16000;
        const qt::OpenComponent exporter = Exporter(row, settings);
        ASSERT_EQ(ExportWith(exporter.get(), movie.get(), "out"), noErr) << row.name;
        EXPECT_TRUE(
            Run("ffprobe -v error -show_entries stream=channels,sample_rate -of csv=p=0 out > facts && "
                "grep -q ',1$' facts"))
            << row.name;
        // An Opus file counts in 48,000 a second, whatever was encoded.
        const std::string rate = row.subtype == qt::Code("Opus") ? "48000" : std::to_string(settings.rate);
        EXPECT_TRUE(Run("grep -q '^" + rate + ",' facts")) << row.name;
        const Samples decoded = DecodedByFfmpeg("out");
        EXPECT_NEAR(static_cast<double>(decoded.size()), 2.0 * kFrames, 8192) << row.name; // padding counts
    }
}

TEST_F(SoundExporters, OfAFullDiskTellAndLeaveWhatWasThere) {
    ASSERT_TRUE(Run("sox -R -r 44100 -n -c 2 -b 16 long.wav synth 20 pinknoise"));
    const qt::OwnedMovie movie = Open("long.wav");
    drives_.MakeFolder("drive/small");
    const SmallDisk disk(Path("small"), "64k");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting is not permitted";
    WriteBytes(Path("small/old"), "kept");
    for (const qt::SoundExporterRow& row : qt::SoundExporters()) {
        const qt::OpenComponent exporter = Exporter(row);
        EXPECT_EQ(ExportWith(exporter.get(), movie.get(), "small/full"), dskFulErr) << row.name;
        EXPECT_EQ(ExportWith(exporter.get(), movie.get(), "small/old"), dskFulErr) << row.name;
        EXPECT_EQ(ReadBytes(Path("small/old")), "kept") << row.name;
        EXPECT_EQ(ExportWith(exporter.get(), movie.get(), "small"), dupFNErr) << row.name;
        EXPECT_EQ(CountEntries(Path("small")), 1) << row.name;
    }
}

TEST_F(SoundExporters, ReplaceTheFileThatALinkLeadsTo) {
    ASSERT_TRUE(
        Run("sox -R -r 44100 -n -c 1 -b 16 short.wav synth 1 sine 440; echo old >old; ln -s old link"));
    const qt::OwnedMovie movie = Open("short.wav");
    const qt::OpenComponent exporter = Exporter(qt::SoundExporters().front());
    EXPECT_EQ(ExportWith(exporter.get(), movie.get(), "link"), noErr);
    EXPECT_TRUE(Run("test -L link && test \"$(stat -c %s old)\" -gt 1000"));
}

TEST_F(SoundExporters, OfNoSamplesWriteAFileThatOpensOrNone) {
    ASSERT_TRUE(Run("sox -n -r 44100 -c 1 -b 16 empty.wav trim 0 0"));
    const qt::OwnedMovie movie = Open("empty.wav");
    for (const qt::SoundExporterRow& row : qt::SoundExporters()) {
        WriteBytes(Path("out"), "kept");
        const qt::OpenComponent exporter = Exporter(row);
        const OSErr code = ExportWith(exporter.get(), movie.get(), "out");
        if (code == noErr) {
            EXPECT_NE(Open("out"), nullptr) << row.name;
        } else {
            EXPECT_EQ(code, invalidDuration) << row.name;
            EXPECT_EQ(ReadBytes(Path("out")), "kept") << row.name;
        }
    }
}

TEST_F(SoundExporters, RefuseWhatTheirFormatCannotHold) {
    const std::array<std::int16_t, 2> frame = {1, 1};
    const qt::OwnedMovie movie = MovieOf(frame);
    const Track track = GetMovieIndTrack(movie.get(), 1);
    ASSERT_EQ(InsertMediaIntoTrack(track, TimeValue{30000} * 600, 0, 1, kNormalRate), noErr);
    for (const OSType format : {qt::Code("WAVE"), qt::Code("AIFF"), qt::Code("AIFC"), qt::Code("ULAW")}) {
        const qt::OpenComponent exporter = OpenComponentOf(qt::kMovieExporter, format);
        EXPECT_EQ(ExportWith(exporter.get(), movie.get(), "large"), fileBoundsErr);
        EXPECT_FALSE(IsThere(Path("large")));
    }
}

TEST_F(SoundExporters, ASoundThatCannotBeReadLeavesTheTargetAlone) {
    WriteBytes(Path("out"), "kept");
    const qt::OwnedMovie silent(NewMovie(0));
    EXPECT_EQ(Export(silent.get(), "out"), noSoundTrackInMovieErr);
    EXPECT_EQ(ReadBytes(Path("out")), "kept");
}

} // namespace
