#include "tests/quicktime/movies/movie_test.h"

#include "platform/quicktime/movies/atom_containers.h"
#include "platform/quicktime/movies/atoms.h"
#include "tests/support/files.h"
#include "tests/support/small_disk.h"

#include <cmath>
#include <numbers>

namespace {

using corvane::test::Block;
using corvane::test::kStereo;
using corvane::test::MovieOf;
using corvane::test::MovieTest;

qt::Bytes BigEndian(std::uint32_t value, int size = 4) {
    qt::AtomWriter writer;
    if (size == 2)
        writer.Put16(static_cast<std::uint16_t>(value));
    else
        writer.Put32(value);
    return writer.Take();
}

class WaveExporter : public MovieTest {
protected:
    static qt::OwnedMovie Level(std::int16_t level, std::size_t frames) {
        const std::vector<std::int16_t> samples(2 * frames, level);
        return MovieOf(kStereo, std::as_bytes(std::span(samples)));
    }

    /// A volume ramp between two levels (256 is full) over [begin, begin + duration) movie units.
    static void AddRamp(Movie movie, TimeValue begin, TimeValue duration, std::uint16_t from,
                        std::uint16_t to) {
        const Track sound = corvane::test::FirstSoundTrack(movie);
        const Track track = NewMovieTrack(movie, 0, 0, 0);
        const Media media =
            NewTrackMedia(track, qt::Code("twen"), GetMovieTimeScale(movie), nullptr, qt::Code("hndl"));
        QTAtomContainer container = nullptr;
        ASSERT_EQ(QTNewAtomContainer(&container), noErr);
        const qt::MemoryHandle tween(container);
        QTAtom entry = 0;
        ASSERT_EQ(QTInsertChild(container, kParentAtomIsContainer, kTweenEntry, 1, {}, &entry), noErr);
        ASSERT_EQ(QTInsertChild(container, entry, kTweenType, 1, BigEndian(1), nullptr), noErr);
        qt::Bytes values = BigEndian(from, 2);
        const qt::Bytes last = BigEndian(to, 2);
        values.insert(values.end(), last.begin(), last.end());
        ASSERT_EQ(QTInsertChild(container, entry, kTweenData, 1, values, nullptr), noErr);
        ASSERT_EQ(QTInsertChild(container, entry, kTweenStartOffset, 1, BigEndian(0), nullptr), noErr);
        ASSERT_EQ(QTInsertChild(container, entry, kTweenDuration, 1,
                                BigEndian(static_cast<std::uint32_t>(duration)), nullptr),
                  noErr);
        const qt::MemoryHandle description = Block(qt::Bytes(16));
        ASSERT_EQ(BeginMediaEdits(media), noErr);
        ASSERT_EQ(AddMediaSample(media, qt::HandleBytes(container), duration, description.get(), 1), noErr);
        ASSERT_EQ(EndMediaEdits(media), noErr);
        ASSERT_EQ(InsertMediaIntoTrack(track, begin, 0, duration, kNormalRate), noErr);
        std::int32_t index = 0;
        ASSERT_EQ(AddTrackReference(sound, track, qt::Code("ssrc"), &index), noErr);
        QTAtomContainer map = nullptr;
        ASSERT_EQ(QTNewAtomContainer(&map), noErr);
        const qt::MemoryHandle input_map(map);
        QTAtom input = 0;
        ASSERT_EQ(QTInsertChild(map, kParentAtomIsContainer, kTrackModifierInput, index, {}, &input), noErr);
        ASSERT_EQ(
            QTInsertChild(map, input, kTrackModifierType, 1, BigEndian(kTrackModifierTypeVolume), nullptr),
            noErr);
        ASSERT_EQ(QTInsertChild(map, input, kInputMapSubInputID, 1,
                                BigEndian(static_cast<std::uint32_t>(index)), nullptr),
                  noErr);
        ASSERT_EQ(SetMediaInputMap(GetTrackMedia(sound), map), noErr);
    }
};

TEST_F(WaveExporter, ARampScalesEverySampleInItsSpan) {
    const qt::OwnedMovie movie = Level(10000, 44100);
    AddRamp(movie.get(), 150, 300, 255, 0); // from 1/4 s to 3/4 s
    const std::vector<std::int16_t> samples = Exported(movie.get());
    ASSERT_EQ(samples.size(), 88200U);
    for (int frame = 0; frame < 44100; ++frame) {
        const bool inside = frame >= 11025 && frame < 33075;
        const double gain = inside ? 255.0 / 256 * (1 - (frame - 11025) / 22050.0) : 1.0;
        ASSERT_NEAR(samples[static_cast<std::size_t>(2 * frame)], 10000 * gain, 0.51) << frame;
        ASSERT_EQ(samples[static_cast<std::size_t>(2 * frame)],
                  samples[static_cast<std::size_t>(2 * frame + 1)]);
    }
}

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
    const Track track = NewMovieTrack(loud.get(), 0, 0, kFullVolume);
    ASSERT_NE(NewTrackMedia(track, qt::Code("soun"), 44100, nullptr, qt::Code("hndl")), nullptr);
    const std::vector<std::int16_t> more(600, 15000);
    const qt::MemoryHandle description = Block(qt::DescribePcm(kStereo));
    ASSERT_EQ(BeginMediaEdits(GetTrackMedia(track)), noErr);
    ASSERT_EQ(AddMediaSample(GetTrackMedia(track), std::as_bytes(std::span(more)), 1, description.get(), 300),
              noErr);
    ASSERT_EQ(EndMediaEdits(GetTrackMedia(track)), noErr);
    ASSERT_EQ(InsertMediaIntoTrack(track, 0, 0, 300, kNormalRate), noErr);
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
    ComponentInstance instance = nullptr;
    ASSERT_EQ(OpenADefaultComponent(qt::kMovieExporter, qt::Code("WAVE"), &instance), noErr);
    const qt::OpenComponent exporter(instance);
    const qt::DataReference out = Reference("out.wav");
    const struct {
        qt::PcmLayout layout;
        const char* same; ///< how sox makes the same file
    } kLayouts[] = {
        {{qt::SampleEncoding::kUnsigned8, false, 1, 44100}, "sox -D s.wav -b 8 -c 1 same.wav"},
        {{qt::SampleEncoding::kSigned24, true, 2, 44100}, "ffmpeg -y -i s.wav -c:a pcm_s24le same.wav"},
        {{qt::SampleEncoding::kFloat32, false, 2, 44100}, "sox s.wav -e float -b 32 same.wav"},
    };
    for (const auto& [layout, same] : kLayouts) {
        const qt::MemoryHandle description = Block(qt::DescribePcm(layout));
        ASSERT_EQ(MovieExportSetSampleDescription(instance, description.get(), qt::Code("soun")), noErr);
        ASSERT_EQ(ConvertMovieToDataRef(movie.get(), nullptr, out.handle.get(), out.type, 0, 0,
                                        createMovieFileDeleteCurFile, instance),
                  noErr);
        ASSERT_TRUE(Run(same));
        // As decoded by another program: the same number of frames, and samples no more than a step apart.
        ASSERT_TRUE(
            Run("sox -D -m -v 1 out.wav -v -1 same.wav -n stat 2> stat.txt; grep -q 'Length' stat.txt"));
        const auto ours = DecodedBySox("out.wav");
        const auto theirs = DecodedBySox("same.wav");
        ASSERT_EQ(ours.size(), theirs.size()) << same;
        const int step = layout.encoding == qt::SampleEncoding::kUnsigned8 ? 256 : 0;
        for (std::size_t i = 0; i < ours.size(); ++i)
            ASSERT_LE(std::abs(ours[i] - theirs[i]), step) << same << i;
    }
    const qt::MemoryHandle compressed = Block(qt::DescribePcm({qt::SampleEncoding::kMuLaw, false, 1, 8000}));
    EXPECT_EQ(MovieExportSetSampleDescription(instance, compressed.get(), qt::Code("soun")), paramErr);
    OSType type = 0;
    ASSERT_EQ(MovieExportGetFileType(instance, &type), noErr);
    EXPECT_EQ(type, qt::Code("WAVE"));
}

TEST_F(WaveExporter, AFailureLeavesNoFile) {
    const qt::OwnedMovie movie = Level(1, 441000);
    drives_.MakeFolder("drive/small");
    const corvane::test::SmallDisk disk(Path("small"), "1m");
    if (disk.IsMounted()) {
        EXPECT_EQ(Export(movie.get(), "small/full.wav"), dskFulErr);
        EXPECT_FALSE(corvane::test::IsThere(Path("small/full.wav")));
    }
    EXPECT_EQ(Export(movie.get(), "nowhere/s.wav"), fnfErr);

    ComponentInstance instance = nullptr;
    ASSERT_EQ(OpenADefaultComponent(qt::kMovieExporter, qt::Code("WAVE"), &instance), noErr);
    const qt::OpenComponent exporter(instance);
    const qt::DataReference out = Reference("out.wav");
    std::vector<double> told;
    const auto stop_half_way = [](Movie, double done, void* context) {
        static_cast<std::vector<double>*>(context)->push_back(done);
        return done >= 0.5 ? progressProcAborted : noErr;
    };
    ASSERT_EQ(MovieExportSetProgressProc(instance, stop_half_way, &told), noErr);
    EXPECT_EQ(ConvertMovieToDataRef(movie.get(), nullptr, out.handle.get(), out.type, 0, 0, 0, instance),
              progressProcAborted);
    EXPECT_FALSE(corvane::test::IsThere(Path("out.wav")));
    ASSERT_GT(told.size(), 1U);
    EXPECT_EQ(told.front(), 0);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    corvane::test::WriteBytes(Path("out.wav"), "kept");
    EXPECT_EQ(ConvertMovieToDataRef(movie.get(), nullptr, out.handle.get(), out.type, 0, 0, 0, instance),
              dupFNErr);
    EXPECT_EQ(corvane::test::ReadBytes(Path("out.wav")), "kept");
}

TEST_F(WaveExporter, ASoundCanReplaceItsOwnFile) {
    ASSERT_TRUE(Run("sox -R -r 44100 -n -c 2 -b 24 s.wav synth 1 pinknoise"));
    const std::vector<std::int16_t> before = DecodedBySox("s.wav");
    const qt::OwnedMovie movie = Open("s.wav");
    ASSERT_EQ(Export(movie.get(), "s.wav"), noErr);
    EXPECT_EQ(corvane::test::WaveSamples(Path("s.wav")).size(), before.size());
}

} // namespace
