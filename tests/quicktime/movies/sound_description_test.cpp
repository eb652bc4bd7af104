#include "platform/quicktime/movies/sound_description.h"

#include "platform/quicktime/movies/aac_setup.h"
#include "platform/quicktime/movies/atoms.h"
#include "tests/quicktime/movies/movie_test.h"

namespace {

using namespace corvane::test;
using qt::SampleEncoding;

AudioStreamBasicDescription StreamOf(const qt::Bytes& description) {
    const qt::MemoryHandle block = HandleOf(description);
    const qt::MemoryHandle value(NewHandle(0));
    AudioStreamBasicDescription stream;
    EXPECT_EQ(QTSoundDescriptionGetProperty(block.get(), qt::Code("sdes"), qt::Code("asbd"), value.get()),
              noErr);
    EXPECT_EQ(GetHandleSize(value.get()), 40);
    std::memcpy(&stream, qt::HandleBytes(value.get()).data(), sizeof(stream));
    return stream;
}

SoundDescriptionV1 AsV1(const qt::Bytes& description) {
    const qt::MemoryHandle block = HandleOf(description);
    const qt::MemoryHandle converted(NewHandle(0));
    SoundDescriptionV1 first;
    EXPECT_EQ(QTSoundDescriptionConvertToV1(block.get(), converted.get()), noErr);
    std::memcpy(static_cast<void*>(&first), qt::HandleBytes(converted.get()).data(), sizeof(first));
    EXPECT_EQ(first.descSize, GetHandleSize(converted.get()));
    return first;
}

TEST(SoundDescriptions, LayoutsComeBackFromEveryVersionAndFromFiles) {
    for (const auto encoding :
         {SampleEncoding::kUnsigned8, SampleEncoding::kSigned8, SampleEncoding::kSigned16,
          SampleEncoding::kSigned24, SampleEncoding::kSigned32, SampleEncoding::kFloat32,
          SampleEncoding::kFloat64, SampleEncoding::kMuLaw, SampleEncoding::kALaw}) {
        for (const bool big_endian : {false, true}) {
            for (const std::uint32_t rate : {8000U, 44100U, 192000U}) {
                qt::PcmLayout layout = {encoding, big_endian, 2, rate};
                if (layout.SampleBytes() == 1) layout.big_endian = false;
                const qt::Bytes description = qt::DescribePcm(layout);
                EXPECT_EQ(qt::LayoutOf(description), layout);
                const auto from_file = qt::SoundDescriptionFromFile(qt::SoundDescriptionToFile(description));
                ASSERT_TRUE(from_file.has_value());
                EXPECT_EQ(*from_file, description);
                const AudioStreamBasicDescription stream = StreamOf(description);
                EXPECT_EQ(stream.mBitsPerChannel, 8 * layout.SampleBytes());
                EXPECT_EQ(stream.mSampleRate, rate);
                EXPECT_EQ(stream.mChannelsPerFrame, 2U);
                EXPECT_EQ(stream.mBytesPerFrame, layout.FrameBytes());
            }
        }
    }
}

TEST(SoundDescriptions, CompressedOnesCarryTheirWaveFormat) {
    qt::CompressedSound sound;
    sound.data_format = qt::Code(".mp3");
    sound.channels = 2;
    sound.rate = 44100;
    sound.frames_per_packet = 1152;
    sound.average_bytes_per_second = 16000;
    sound.wave_tag = 0x55;
    const qt::Bytes description = qt::DescribeCompressed(sound);
    const SoundDescriptionV1 first = AsV1(description);
    EXPECT_EQ(first.compressionID, -2);
    EXPECT_GT(first.descSize, 52);
    const qt::MemoryHandle block = HandleOf(description);
    const qt::MemoryHandle wave(NewHandle(0));
    ASSERT_EQ(GetSoundDescriptionExtension(block.get(), wave.get(), qt::Code("wave")), noErr);
    const auto atoms = qt::HandleBytes(wave.get());
    EXPECT_EQ(qt::BigEndian32(qt::FindAtom(atoms, qt::Code("frma")), 0), qt::Code(".mp3"));
    const auto format = qt::FindAtom(atoms, qt::Code(".mp3"));
    ASSERT_EQ(format.size(), 18U);
    EXPECT_EQ(std::to_integer<int>(format[0]), 0x55);
    EXPECT_EQ(std::to_integer<int>(format[8]) | std::to_integer<int>(format[9]) << 8, 16000);
    EXPECT_EQ(StreamOf(description).mBitsPerChannel, 0U);
    EXPECT_FALSE(qt::LayoutOf(description).has_value());
    EXPECT_NE(GetSoundDescriptionExtension(block.get(), wave.get(), qt::Code("chan")), noErr);
    sound.rate = 96000;
    const qt::Bytes fast = qt::DescribeCompressed(sound);
    EXPECT_EQ(StreamOf(fast).mSampleRate, 96000);
    EXPECT_EQ(AsV1(fast).compressionID, -2);
    EXPECT_EQ(AsV1(fast).descSize, first.descSize);
}

TEST(SoundDescriptions, SignedBytesNeverCallThemselvesTwos) {
    qt::Bytes file = qt::SoundDescriptionToFile(qt::DescribePcm({SampleEncoding::kSigned16, true, 2, 22050}));
    file[27] = std::byte{8};
    const auto description = qt::SoundDescriptionFromFile(file);
    ASSERT_TRUE(description.has_value());
    EXPECT_EQ(qt::ReadSoundFormat(*description)->data_format, qt::Code("lpcm"));
    EXPECT_EQ(qt::LayoutOf(*description), (qt::PcmLayout{SampleEncoding::kSigned8, false, 2, 22050}));
}

TEST(SoundDescriptions, NonsenseIsNone) {
    const qt::Bytes good = qt::DescribePcm({SampleEncoding::kFloat32, false, 2, 96000});
    for (std::size_t size = 0; size < 36; ++size) {
        EXPECT_FALSE(qt::ReadSoundFormat(std::span(good).first(size)).has_value());
        EXPECT_FALSE(qt::SoundDescriptionFromFile(std::span(good).first(size)).has_value());
    }
    const qt::MemoryHandle block = HandleOf(qt::Bytes(36));
    const qt::MemoryHandle value(NewHandle(0));
    EXPECT_EQ(QTSoundDescriptionGetProperty(block.get(), qt::Code("sdes"), qt::Code("asbd"), value.get()),
              invalidSampleDescription);
    EXPECT_EQ(QTSoundDescriptionConvertToV1(block.get(), value.get()), invalidSampleDescription);
}

class StreamDescriptions : public MovieTest {};

TEST_F(StreamDescriptions, TellWhatTheDecoderNeeds) {
    ASSERT_TRUE(Run("sox -R -r 48000 -n -c 2 -b 24 s.wav synth 2 pinknoise gain -3"));
    ASSERT_TRUE(Run("ffmpeg -i s.wav -c:a aac -b:a 128k s.m4a && ffmpeg -i s.wav -c:a alac alac.m4a"));
    const auto description_of = [&](const char* name) {
        const qt::OwnedMovie movie = Open(name);
        return DescriptionOf(GetTrackMedia(GetMovieIndTrack(movie.get(), 1)));
    };
    const qt::Bytes aac = description_of("s.m4a");
    EXPECT_NEAR(qt::StatedBitRate(aac), 128000, 12000);
    EXPECT_EQ(StreamOf(aac).mFramesPerPacket, 1024U);
    const qt::MemoryHandle block = HandleOf(aac);
    const qt::MemoryHandle cookie(NewHandle(0));
    EXPECT_EQ(QTSoundDescriptionGetProperty(block.get(), qt::Code("sdes"), qt::Code("kuki"), cookie.get()),
              noErr);
    EXPECT_GT(GetHandleSize(cookie.get()), 20);
    const AudioStreamBasicDescription alac = StreamOf(description_of("alac.m4a"));
    EXPECT_EQ(alac.mFormatID, qt::Code("alac"));
    EXPECT_EQ(alac.mFormatFlags, 3U); // 24 bits
    EXPECT_EQ(alac.mFramesPerPacket, 4096U);
    EXPECT_EQ(alac.mBitsPerChannel, 0U);
}

TEST_F(StreamDescriptions, AacHasTheChannelsOfItsSetUp) {
    ASSERT_TRUE(Run("for rate in 48000 16000; do for n in 1 2 3 4 5 6 7 8; do "
                    "sox -R -n -r $rate -c $n s.wav synth 0.2 pinknoise && "
                    "ffmpeg -guess_layout_max 8 -i s.wav -c:a aac $n-$rate.m4a || exit 1; done; done"));
    for (std::uint32_t channels = 1; channels <= 8; ++channels) {
        for (const char* ending : {"-48000.m4a", "-16000.m4a"}) {
            const qt::OwnedMovie movie = Open(std::to_string(channels).append(ending));
            const auto format =
                qt::ReadSoundFormat(DescriptionOf(GetTrackMedia(FirstSoundTrack(movie.get()))));
            EXPECT_EQ(format.value().channels, channels) << ending;
        }
    }
    // Of 24 kHz: one channel that packets may make two, two for certain, upper half of the spectrum only, and
    // what says so behind the end of older set-ups.
    const auto channels_of = [](std::initializer_list<std::uint8_t> setup) {
        return qt::AacChannels(std::as_bytes(std::span(setup)));
    };
    EXPECT_EQ(channels_of({0x13, 0x08}), 0U);
    EXPECT_EQ(channels_of({0xEB, 0x09, 0x88, 0x00}), 2U);
    EXPECT_EQ(channels_of({0x2B, 0x09, 0x88, 0x00}), 0U);
    EXPECT_EQ(channels_of({0x13, 0x08, 0x56, 0xE5, 0x9D, 0x48, 0x80}), 0U);
    EXPECT_EQ(channels_of({0x13, 0x08, 0x56, 0xE5, 0x9D, 0x48, 0x00}), 1U);
    EXPECT_EQ(channels_of({0x13, 0x08, 0x56, 0xE5, 0x00}), 1U);
    EXPECT_EQ(channels_of({}), 0U);
}

} // namespace
