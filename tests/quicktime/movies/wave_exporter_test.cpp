#include "tests/quicktime/movies/movie_test.h"

#include "platform/quicktime/movies/atom_containers.h"
#include "platform/quicktime/movies/atoms.h"
#include "tests/support/files.h"

#include <cmath>
#include <numbers>

namespace {

using namespace corvane::test;

qt::Bytes BigEndian(std::uint32_t value) {
    qt::AtomWriter writer;
    writer.Put32(value);
    return writer.Take();
}

QTAtom Insert(const qt::MemoryHandle& container, QTAtom parent, OSType type, std::int32_t id,
              const qt::Bytes& data) {
    QTAtom atom = 0;
    EXPECT_EQ(QTInsertChild(container.get(), parent, type, id, data, &atom), noErr);
    return atom;
}

class WaveExporter : public MovieTest {
protected:
    static qt::OwnedMovie Level(std::int16_t level, std::size_t frames) {
        return MovieOf(std::vector<std::int16_t>(2 * frames, level));
    }

    /// A volume ramp between two levels (256 is full) over [begin, begin + duration) movie units.
    static void AddRamp(Movie movie, TimeValue begin, TimeValue duration, std::uint16_t from,
                        std::uint16_t to) {
        const Track sound = FirstSoundTrack(movie);
        const Track track = NewMovieTrack(movie, 0, 0, 0);
        const Media media =
            NewTrackMedia(track, qt::Code("twen"), GetMovieTimeScale(movie), nullptr, qt::Code("hndl"));
        const qt::MemoryHandle tween = NewContainer();
        const QTAtom entry = Insert(tween, kParentAtomIsContainer, kTweenEntry, 1, {});
        Insert(tween, entry, kTweenType, 1, BigEndian(1));
        qt::AtomWriter levels;
        levels.Put16(from);
        levels.Put16(to);
        Insert(tween, entry, kTweenData, 1, levels.Take());
        Insert(tween, entry, kTweenStartOffset, 1, BigEndian(0));
        Insert(tween, entry, kTweenDuration, 1, BigEndian(static_cast<std::uint32_t>(duration)));
        const qt::MemoryHandle description = HandleOf(qt::Bytes(16));
        ASSERT_EQ(BeginMediaEdits(media), noErr);
        ASSERT_EQ(AddMediaSample(media, qt::HandleBytes(tween.get()), duration, description.get(), 1), noErr);
        ASSERT_EQ(EndMediaEdits(media), noErr);
        ASSERT_EQ(InsertMediaIntoTrack(track, begin, 0, duration, kNormalRate), noErr);
        std::int32_t index = 0;
        ASSERT_EQ(AddTrackReference(sound, track, qt::Code("ssrc"), &index), noErr);
        const qt::MemoryHandle map = NewContainer();
        const QTAtom input = Insert(map, kParentAtomIsContainer, kTrackModifierInput, index, {});
        Insert(map, input, kTrackModifierType, 1, BigEndian(kTrackModifierTypeVolume));
        Insert(map, input, kInputMapSubInputID, 1, BigEndian(static_cast<std::uint32_t>(index)));
        ASSERT_EQ(SetMediaInputMap(GetTrackMedia(sound), map.get()), noErr);
    }
};

TEST_F(WaveExporter, ARampStaysWithASelection) {
    const qt::OwnedMovie movie = Level(10000, 44100);
    AddRamp(movie.get(), 150, 300, 0, 255);
    ASSERT_EQ(SetMovieSelection(movie.get(), 300, 300), noErr); // from the middle of the ramp on
    const qt::OwnedMovie part(CopyMovieSelection(movie.get()));
    const std::vector<std::int16_t> samples = Exported(part.get());
    ASSERT_EQ(samples.size(), 44100U);
    for (int frame = 0; frame < 22050; ++frame) {
        const double gain = frame < 11025 ? 255.0 / 256 * (0.5 + frame / 22050.0) : 1.0;
        ASSERT_NEAR(samples[static_cast<std::size_t>(2 * frame)], 10000 * gain, 0.51) << frame;
    }
}

TEST_F(WaveExporter, TracksAreMixedAtTheirVolumesAndLimited) {
    const qt::OwnedMovie movie = Level(20000, 600);
    const qt::OwnedMovie second = Level(10000, 300);
    SetTrackVolume(GetMovieIndTrack(second.get(), 1), 128);
    ASSERT_EQ(PasteMovieSelection(movie.get(), second.get()), noErr); // at 0: the first one moves behind
    ASSERT_EQ(SetMovieSelection(movie.get(), 0, 0), noErr);
    std::vector<std::int16_t> samples = Exported(movie.get());
    EXPECT_EQ(samples[0], 5000);
    EXPECT_EQ(samples.back(), 20000);

    const qt::OwnedMovie loud = Level(20000, 600);
    const Track track = AddTrack(loud.get(), std::vector<std::int16_t>(600, 15000));
    samples = Exported(loud.get());
    ASSERT_EQ(samples.size(), 1200U);
    EXPECT_EQ(samples[0], 32767);
    EXPECT_EQ(samples[599], 32767);
    EXPECT_EQ(samples[600], 20000);
    SetTrackVolume(track, -5);
    EXPECT_EQ(Exported(loud.get())[0], 20000);
}

TEST_F(WaveExporter, RatesAreChangedWithoutShiftOrLoss) {
    ASSERT_TRUE(Run("sox -r 22050 -n -c 1 -b 16 low.wav synth 1 sine 1000 vol 0.5"));
    const qt::OwnedMovie movie = Open("low.wav");
    EXPECT_EQ(GetMovieDuration(movie.get()), 22050);
    const std::vector<std::int16_t> samples = Exported(movie.get());
    ASSERT_EQ(samples.size(), 88200U);
    for (std::size_t frame = 2000; frame < 42000; ++frame) {
        const double expected =
            16384 * std::sin(2 * std::numbers::pi * 1000 * static_cast<double>(frame) / 44100);
        ASSERT_NEAR(samples[2 * frame], expected, 3) << frame;
        ASSERT_EQ(samples[2 * frame], samples[2 * frame + 1]);
    }
}

TEST_F(WaveExporter, SettingsChooseTheLayout) {
    ASSERT_TRUE(Run("sox -R -r 44100 -n -c 2 -b 16 s.wav synth 1001s pinknoise vol 0.5"));
    const qt::OwnedMovie movie = Open("s.wav");
    const qt::OpenComponent exporter = OpenComponentOf(qt::kMovieExporter, qt::Code("WAVE"));
    const auto set_layout = [&](const qt::PcmLayout& layout) {
        const qt::MemoryHandle description = HandleOf(qt::DescribePcm(layout));
        return MovieExportSetSampleDescription(exporter.get(), description.get(), qt::Code("soun"));
    };
    for (const auto& layout : {qt::PcmLayout{qt::SampleEncoding::kSigned24, true, 2, 44100},
                               {qt::SampleEncoding::kFloat32, false, 2, 44100}}) {
        ASSERT_EQ(set_layout(layout), noErr);
        ASSERT_EQ(ExportWith(exporter.get(), movie.get(), "out.wav"), noErr);
        EXPECT_EQ(DecodedBySox("out.wav"), DecodedBySox("s.wav"));
        EXPECT_EQ(ReadBytes(Path("out.wav")).size() / (1001 * layout.FrameBytes()), 1U);
    }
    ASSERT_EQ(set_layout({qt::SampleEncoding::kUnsigned8, false, 1, 44100}), noErr);
    ASSERT_EQ(ExportWith(exporter.get(), movie.get(), "out.wav"), noErr);
    EXPECT_EQ(ReadBytes(Path("out.wav")).size(), 44U + 1001 + 1) << "chunks begin at even offsets";
    EXPECT_EQ(set_layout({qt::SampleEncoding::kMuLaw, false, 1, 8000}), paramErr) << "compressed";
    OSType type = 0;
    ASSERT_EQ(MovieExportGetFileType(exporter.get(), &type), noErr);
    EXPECT_EQ(type, qt::Code("WAVE"));
}

TEST_F(WaveExporter, AFailureLeavesNoFile) {
    const qt::OwnedMovie movie = Level(1, 441000);
    EXPECT_EQ(Export(movie.get(), "nowhere/s.wav"), fnfErr);
    const qt::OpenComponent exporter = OpenComponentOf(qt::kMovieExporter, qt::Code("WAVE"));
    std::vector<double> told;
    const auto stop_half_way = [](Movie, double done, void* context) {
        static_cast<std::vector<double>*>(context)->push_back(done);
        return done >= 0.5 ? progressProcAborted : noErr;
    };
    ASSERT_EQ(MovieExportSetProgressProc(exporter.get(), stop_half_way, &told), noErr);
    EXPECT_EQ(ExportWith(exporter.get(), movie.get(), "out.wav", 0), progressProcAborted);
    EXPECT_FALSE(IsThere(Path("out.wav")));
    ASSERT_GT(told.size(), 1U);
    EXPECT_EQ(told.front(), 0);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    WriteBytes(Path("out.wav"), "kept");
    EXPECT_EQ(ExportWith(exporter.get(), movie.get(), "out.wav", 0), dupFNErr);
    EXPECT_EQ(ReadBytes(Path("out.wav")), "kept");
}

} // namespace
