#include "platform/quicktime/movies/sound_resource.h"

#include "platform/quicktime/movies/atoms.h"
#include "tests/quicktime/movies/movie_test.h"

#include <cmath>
#include <numbers>

namespace {

using namespace corvane::test;

class SoundResources : public MovieTest {
protected:
    qt::OwnedMovie Paste(const qt::Bytes& resource) const {
        const qt::MemoryHandle block = HandleOf(resource);
        qt::OwnedMovie movie(NewMovie(0));
        code_ = PasteHandleIntoMovie(block.get(), qt::Code("snd "), movie.get());
        return movie;
    }

    mutable OSErr code_ = noErr;
};

/// Format 2 with one command and a header of `size` bytes, the rest of which `fields` fills.
template <class Fields>
qt::Bytes Resource(std::uint8_t encode, std::uint32_t second, std::uint32_t rate, Fields&& fields,
                   std::span<const std::byte> samples) {
    qt::AtomWriter writer;
    writer.Put16(2);
    writer.Put16(0);
    writer.Put16(1);
    writer.Put16(0x8051);
    writer.Put16(0);
    writer.Put32(14);
    writer.Put32(0);
    writer.Put32(second);
    writer.Put32(rate << 16);
    writer.Put32(0);
    writer.Put32(0);
    writer.Put8(encode);
    writer.Put8(60);
    fields(writer);
    writer.Put(samples);
    return writer.Take();
}

qt::Bytes Counting(std::size_t size) {
    qt::Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::byte>(i);
    return bytes;
}

TEST_F(SoundResources, HoldTheSoundAsMonoBytes) {
    std::vector<std::int16_t> samples;
    for (int i = 0; i < 44100; ++i) {
        const double wave = std::sin(2 * std::numbers::pi * 440 * i / 44100);
        samples.push_back(static_cast<std::int16_t>(30000 * wave));
        samples.push_back(static_cast<std::int16_t>(10000 * wave));
    }
    const qt::OwnedMovie movie = MovieOf(samples);
    const qt::MemoryHandle block(NewHandle(0));
    ASSERT_EQ(PutMovieIntoTypedHandle(movie.get(), nullptr, qt::Code("snd "), block.get()), noErr);
    const auto resource = qt::HandleBytes(block.get());
    ASSERT_EQ(resource.size(), 42 + 44100U);
    for (std::size_t i = 0; i < 44100; ++i) {
        const double mean = (samples[2 * i] + samples[2 * i + 1]) / 2.0;
        ASSERT_NEAR(std::to_integer<int>(resource[42 + i]) - 128, mean / 256, 0.51) << i;
    }
    const qt::OwnedMovie again = Paste(qt::Bytes(resource.begin(), resource.end()));
    ASSERT_EQ(code_, noErr);
    const Track track = FirstSoundTrack(again.get());
    EXPECT_EQ(GetMediaDuration(GetTrackMedia(track)), 44100);
    EXPECT_EQ(GetMovieDuration(again.get()), 44100);
    EXPECT_EQ(PutMovieIntoTypedHandle(movie.get(), nullptr, qt::Code("PICT"), block.get()), cantFindHandler);
    const qt::OwnedMovie empty(NewMovie(0));
    EXPECT_EQ(PutMovieIntoTypedHandle(empty.get(), nullptr, qt::Code("snd "), block.get()), invalidTrack);
}

TEST_F(SoundResources, OfEveryHeaderAreRead) {
    const qt::Bytes bytes = Counting(1000);
    const auto nothing = [](qt::AtomWriter&) {};
    const auto check = [&](const qt::Bytes& resource, const char(&format)[5], TimeValue frames,
                           TimeScale scale) {
        const qt::OwnedMovie movie = Paste(resource);
        ASSERT_EQ(code_, noErr) << format;
        const Media media = GetTrackMedia(FirstSoundTrack(movie.get()));
        EXPECT_EQ(GetMediaDuration(media), frames) << format;
        EXPECT_EQ(GetMediaTimeScale(media), scale) << format;
        EXPECT_EQ(qt::ReadSoundFormat(DescriptionOf(media))->data_format, qt::Code(format));
        EXPECT_EQ(Exported(movie.get()).size(),
                  static_cast<std::size_t>(2 * ((frames * 44100 + scale / 2) / scale)))
            << format;
    };
    check(Resource(0, 1000, 22254, nothing, bytes), "raw ", 1000, 22254);
    check(Resource(0, 5000, 11127, nothing, bytes), "raw ", 1000, 11127); // says more than there is
    const auto extended = [](qt::AtomWriter& writer) {
        writer.Put32(200);
        writer.Zeros(22);
        writer.Put16(16);
        writer.Zeros(14);
    };
    check(Resource(0xFF, 2, 44100, extended, bytes), "twos", 200, 44100);
    const auto compressed = [](std::uint32_t count, OSType format, int id) {
        return [=](qt::AtomWriter& writer) {
            writer.Put32(count);
            writer.Zeros(14);
            writer.Put32(format);
            writer.Zeros(12);
            writer.Put16(static_cast<std::uint16_t>(id));
            writer.Zeros(4);
            writer.Put16(16);
        };
    };
    check(Resource(0xFE, 1, 22050, compressed(10, qt::Code("ima4"), -1), bytes), "ima4", 640, 22050);
    check(Resource(0xFE, 1, 22050, compressed(20, 0, 3), bytes), "MAC3", 120, 22050);
    check(Resource(0xFE, 1, 8000, compressed(900, qt::Code("ulaw"), -1), bytes), "ulaw", 900, 8000);
}

TEST_F(SoundResources, ThatAreNoneOrBrokenAreRefused) {
    const qt::Bytes good = Resource(
        0, 1000, 22050, [](qt::AtomWriter&) {}, Counting(1000));
    for (std::size_t size = 0; size < 36; ++size) {
        Paste(qt::Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_EQ(code_, badFileFormat) << size;
    }
    for (const std::size_t at : {1U, 6U, 12U, 22U, 34U}) { // format, command, offset, rate, kind of header
        qt::Bytes bad = good;
        bad[at] = bad[at + 1] = std::byte{0};
        if (at == 34U) bad[at] = std::byte{7};
        Paste(bad);
        EXPECT_EQ(code_, badFileFormat) << at;
    }
    Paste(Resource(0xFF, 0, 44100, [](qt::AtomWriter& writer) { writer.Zeros(42); }, {}));
    EXPECT_EQ(code_, badFileFormat); // no channels
}

} // namespace
