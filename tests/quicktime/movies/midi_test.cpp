#include "platform/quicktime/movies/midi_events.h"

#include "platform/quicktime/movies/atoms.h"
#include "platform/quicktime/movies/movie_model.h"
#include "tests/quicktime/movies/movie_test.h"
#include "tests/support/environment_variable.h"
#include "tests/support/files.h"

#include <cmath>
#include <numbers>

namespace {

using namespace corvane::test;

std::string File(std::uint16_t format, std::uint16_t division, const std::vector<std::string>& tracks) {
    qt::AtomWriter writer;
    writer.Put("MThd");
    writer.Put32(6);
    writer.Put16(format);
    writer.Put16(static_cast<std::uint16_t>(tracks.size()));
    writer.Put16(division);
    for (const std::string& track : tracks) {
        writer.Put("MTrk");
        writer.Put32(static_cast<std::uint32_t>(track.size()));
        writer.Put(track);
    }
    const qt::Bytes bytes = writer.Take();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

const std::string kEnd("\x00\xFF\x2F\x00", 4);

/// A flute: after a beat of silence at 120 beats a minute A4 for a beat, then at 240 beats A5 for two.
std::string Flute() {
    const std::string tempo("\x00\xFF\x51\x03\x07\xA1\x20\x87\x40\xFF\x51\x03\x03\xD0\x90", 15);
    const std::string notes("\x00\xC0\x49\x83\x60\x90\x45\x64\x83\x60\x45\x00\x00\x51\x64\x87\x40\x51\x00",
                            19);
    return File(1, 480, {tempo + kEnd, notes + kEnd});
}

/// How much of a frequency there is in frames of stereo.
double Strength(std::span<const float> frames, double frequency) {
    double real = 0;
    double imaginary = 0;
    for (std::size_t i = 0; i < frames.size() / 2; ++i) {
        const double angle = 2 * std::numbers::pi * frequency * static_cast<double>(i) / qt::kMidiRate;
        real += static_cast<double>(frames[2 * i]) * std::cos(angle);
        imaginary += static_cast<double>(frames[2 * i]) * std::sin(angle);
    }
    return std::hypot(real, imaginary);
}

class Midi : public MovieTest {
protected:
    [[nodiscard]] qt::OwnedMovie OpenBytes(const std::string& bytes) const {
        WriteBytes(Path("song.mid"), bytes);
        return Open("song.mid");
    }
    static std::vector<float> Read(qt::FrameReader& reader, std::int64_t start, std::size_t frames) {
        std::vector<float> values(2 * frames);
        const auto read = reader.Read(start, std::as_writable_bytes(std::span(values)));
        values.resize(static_cast<std::size_t>(read.frames) * 2);
        return values;
    }
};

TEST_F(Midi, PlaysNotesAtTheirTimesAndPitches) {
    const qt::OwnedMovie movie = OpenBytes(Flute());
    EXPECT_EQ(GetMovieDuration(movie.get()), 44100 * 5 / 2); // 1 s, 0.5 s, and 1 s in which notes ring out
    const auto opened = qt::OpenFrameReader(*GetTrackMedia(FirstSoundTrack(movie.get())));
    ASSERT_EQ(opened.code, noErr);
    const std::vector<float> all = Read(*opened.reader, 0, 200'000);
    ASSERT_EQ(all.size(), 2U * 110'250);
    const auto part = [&](double from, double seconds) {
        return std::span(all).subspan(2 * static_cast<std::size_t>(from * 44100),
                                      2 * static_cast<std::size_t>(seconds * 44100));
    };
    EXPECT_LT(Strength(part(0, 0.49), 440), 1e-3);
    for (const double wrong : {415.3, 466.2, 880.0})
        EXPECT_GT(Strength(part(0.6, 0.4), 440), 3 * Strength(part(0.6, 0.4), wrong)) << wrong;
    for (const double wrong : {440.0, 830.6, 932.3})
        EXPECT_GT(Strength(part(1.1, 0.4), 880), 3 * Strength(part(1.1, 0.4), wrong)) << wrong;
    EXPECT_LT(Strength(part(2.3, 0.2), 880), 0.1 * Strength(part(1.2, 0.2), 880));

    for (const std::int64_t start : {50'000, 30'001, 30'064, 0}) { // back, and in other blocks
        std::vector<float> pieces;
        for (const std::size_t size : {1U, 63U, 1000U, 4097U}) {
            const auto at = start + static_cast<std::int64_t>(pieces.size() / 2);
            const auto piece = Read(*opened.reader, at, size);
            pieces.insert(pieces.end(), piece.begin(), piece.end());
        }
        ASSERT_EQ(pieces.size(), 2U * 5161);
        EXPECT_TRUE(std::equal(pieces.begin(), pieces.end(), all.begin() + 2 * start)) << start;
    }
    EXPECT_TRUE(Read(*opened.reader, 110'250, 10).empty());
    EXPECT_EQ(Exported(movie.get()).size(), all.size());
}

TEST_F(Midi, CountsTimeInEveryWay) {
    const auto seconds = [&](const std::string& file) {
        const qt::OwnedMovie movie = OpenBytes(file);
        return static_cast<double>(GetMovieDuration(movie.get())) / 44100 - 1;
    };
    const std::string later("\x81\x48\xFF\x2F\x00", 5); // the end, 200 ticks on
    EXPECT_NEAR(seconds(File(0, 96, {later})), 200 / 96.0 / 2, 2e-5);
    EXPECT_NEAR(seconds(File(0, 0xE728, {later})), 200 / (25.0 * 40), 2e-5);
    EXPECT_NEAR(seconds(File(0, 0xE304, {later})), 200 / (30000 / 1001.0 * 4), 2e-5);
    const std::string inside = "RMID" + std::string("LIST\x01\x00\x00\x00-\x00", 10);
    const std::string song = File(0, 96, {later});
    const std::string size = {static_cast<char>(song.size()), 0, 0, 0};
    EXPECT_NEAR(seconds("RIFF" + std::string("\x40\x00\x00\x00", 4) + inside + "data" + size + song),
                200 / 96.0 / 2, 2e-5);
}

TEST_F(Midi, RefusesWhatCannotBePlayed) {
    const std::string far("\xFF\xFF\xFF\x7F\xFF\x2F\x00", 7);
    EXPECT_EQ(OpeningCode("bad.mid", File(0, 1, {far})), badFileFormat); // years
    EXPECT_EQ(OpeningCode("bad.mid", File(2, 96, {kEnd})), badFileFormat);
    EXPECT_EQ(OpeningCode("bad.mid", File(0, 0, {kEnd})), badFileFormat);
    EXPECT_EQ(OpeningCode("bad.mid", File(0, 96, {})), badFileFormat);
    const qt::OwnedMovie movie = OpenBytes(Flute());
    for (const char* bank : {"/nowhere/bank.sf2", "/etc/passwd"}) {
        const EnvironmentVariable chosen("CORVANE_SOUNDFONT", bank);
        EXPECT_EQ(Export(movie.get(), "out.wav"), cantOpenHandler);
        EXPECT_FALSE(IsThere(Path("out.wav")));
    }
}

/// Whatever happens to a file, its events come in order and end.
TEST(MidiEvents, SurviveDamage) {
    const std::string whole = Flute();
    const auto walk = [](const std::string& file) {
        qt::MidiEvents events(std::as_bytes(std::span(file)));
        std::size_t count = 0;
        std::int64_t last = 0;
        for (auto event = events.Next(); event.has_value(); event = events.Next(), ++count) {
            EXPECT_GE(event->frame, last);
            EXPECT_GE(event->status, 0x80);
            EXPECT_LT(event->first | event->second, 0x80);
            last = event->frame;
        }
        EXPECT_LE(count, file.size());
        return count;
    };
    EXPECT_EQ(walk(whole), 5U);
    std::size_t events = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::size_t now = walk(whole.substr(0, size));
        EXPECT_GE(now, events);
        events = now;
    }
    EXPECT_EQ(events, 5U);
    std::size_t rest = 0;
    std::uint32_t random = 7;
    for (int round = 0; round < 5000; ++round) {
        std::string damaged = whole;
        for (int i = 0; i <= round % 4; ++i) {
            random = random * 1664525 + 1013904223;
            damaged[(random >> 8) % damaged.size()] = static_cast<char>(random >> 24);
        }
        rest += walk(damaged);
    }
    EXPECT_GT(rest, 5000U); // of 25,000 events
}

} // namespace
