#include "platform/quicktime/image_codecs/codec.h"

#include "tests/support/made_images.h"

#include <gtest/gtest.h>

#include <random>
#include <zlib.h>

namespace {

using corvane::test::Bytes;
using corvane::test::MadeImages;

/// Memory that counts what is read of it.
class CountingSource : public qt::DataSource {
public:
    explicit CountingSource(const Bytes& bytes) : bytes_(qt::MemorySource(std::span(bytes))) {}
    [[nodiscard]] std::uint64_t GetSize() const noexcept override { return bytes_->GetSize(); }
    std::size_t Read(std::uint64_t offset, std::span<std::byte> buffer) noexcept override {
        const std::size_t count = bytes_->Read(offset, buffer);
        read += count;
        return count;
    }
    std::uint64_t read = 0;

private:
    std::unique_ptr<qt::DataSource> bytes_;
};

const qt::ImageCodec* Sniff(const Bytes& bytes) {
    return qt::FindImageCodec(std::span(bytes).first(std::min(bytes.size(), qt::kSniffedBytes)));
}

struct Outcome {
    ComponentResult code = 0;
    qt::ImageFacts facts;
    std::uint64_t read = 0;
};

Outcome ReadFacts(const qt::ImageCodec& codec, const Bytes& bytes) {
    CountingSource source(bytes);
    Outcome outcome;
    outcome.code = codec.read_facts(source, outcome.facts);
    outcome.read = source.read;
    return outcome;
}

int Dpi(Fixed value) {
    return (value + 0x8000) >> 16;
}

std::string NameOf(const ImageDescription& description) {
    return {reinterpret_cast<const char*>(&description.name[1]), description.name[0]};
}

struct Sample {
    const char* arguments;
    const char* file;
    int width, height, depth, horizontal, vertical;
    bool jpeg;
};

constexpr Sample kSamples[] = {
    {"-size 64x48 plasma:", "a.jpg", 64, 48, 24, 72, 72, true},
    {"-size 640x480 plasma: -interlace Plane", "progressive.jpg", 640, 480, 24, 72, 72, true},
    {"-size 65x31 plasma: -colorspace Gray", "grey.jpg", 65, 31, 40, 72, 72, true},
    {"-size 64x48 plasma: -colorspace CMYK", "cmyk.jpg", 64, 48, 32, 72, 72, true},
    {"-size 64x48 plasma: -units PixelsPerInch -density 300x150", "dpi.jpg", 64, 48, 24, 300, 150, true},
    {"-size 64x48 plasma: -units PixelsPerCentimeter -density 100", "dpcm.jpg", 64, 48, 24, 254, 254, true},
    {"-size 64x48 plasma: -units Undefined -density 3x2", "aspect.jpg", 64, 48, 24, 72, 72, true},
    {"-size 1x1 xc:red", "one.jpg", 1, 1, 24, 72, 72, true},
    {"-size 16000x2 xc:red", "wide.jpg", 16000, 2, 24, 72, 72, true},
    {"-size 64x48 plasma:", "png24:rgb.png", 64, 48, 24, 72, 72, false},
    {"-size 64x48 plasma: -alpha on -channel A -evaluate set 50%", "png32:rgba.png", 64, 48, 32, 72, 72,
     false},
    {"-size 64x48 plasma:", "png48:deep.png", 64, 48, 24, 72, 72, false},
    {"-size 64x48 plasma:", "png64:deepa.png", 64, 48, 32, 72, 72, false},
    {"-size 64x48 plasma: -interlace PNG", "png24:adam7.png", 64, 48, 24, 72, 72, false},
    {"-size 64x48 plasma: -colors 200", "png8:palette.png", 64, 48, 8, 72, 72, false},
    {"-size 64x48 plasma: -colors 13 -define png:color-type=3 -define png:bit-depth=4", "p4.png", 64, 48, 4,
     72, 72, false},
    {"-size 64x48 plasma: -colors 3 -define png:color-type=3 -define png:bit-depth=2", "p2.png", 64, 48, 2,
     72, 72, false},
    {"-size 64x48 gradient: -define png:color-type=0 -define png:bit-depth=8", "g8.png", 64, 48, 40, 72, 72,
     false},
    {"-size 64x48 gradient: -define png:color-type=0 -define png:bit-depth=16", "g16.png", 64, 48, 40, 72, 72,
     false},
    {"-size 64x48 gradient: -posterize 4 -define png:color-type=0 -define png:bit-depth=2", "g2.png", 64, 48,
     34, 72, 72, false},
    {"-size 64x48 gradient: -posterize 16 -define png:color-type=0 -define png:bit-depth=4", "g4.png", 64, 48,
     36, 72, 72, false},
    {"-size 64x48 pattern:gray50 -define png:color-type=0 -define png:bit-depth=1", "g1.png", 64, 48, 1, 72,
     72, false},
    {"-size 64x48 gradient: -define png:color-type=4", "ga.png", 64, 48, 32, 72, 72, false},
    {"-size 64x48 plasma: -units PixelsPerInch -density 300x150", "png24:dpi.png", 64, 48, 24, 300, 150,
     false},
};

TEST(ImageCodecs, FactsOfEveryVariant) {
    const MadeImages images;
    for (const Sample& sample : kSamples) {
        SCOPED_TRACE(sample.file);
        const Bytes bytes = images.MakeBytes(sample.arguments, sample.file);
        const qt::ImageCodec* codec = Sniff(bytes);
        ASSERT_EQ(codec, sample.jpeg ? &qt::kJpegCodec : &qt::kPngCodec);
        const Outcome outcome = ReadFacts(*codec, bytes);
        const ImageDescription& description = outcome.facts.description;
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(description.width, sample.width);
        EXPECT_EQ(description.height, sample.height);
        EXPECT_EQ(description.depth, sample.depth);
        EXPECT_EQ(Dpi(description.hRes), sample.horizontal);
        EXPECT_EQ(Dpi(description.vRes), sample.vertical);
        EXPECT_EQ(description.cType, sample.jpeg ? qt::Code("jpeg") : qt::Code("png "));
        EXPECT_EQ(NameOf(description), sample.jpeg ? "Photo - JPEG" : "PNG");
        EXPECT_EQ(outcome.facts.data_offset, 0U);
        EXPECT_EQ(outcome.facts.data_size, bytes.size());
        EXPECT_EQ(outcome.facts.image_count, 1U);
    }
}

TEST(ImageCodecs, JpegQualityFollowsTheEncodersSetting) {
    const MadeImages images;
    for (const int quality : {10, 25, 50, 75, 90, 100}) {
        SCOPED_TRACE(quality);
        const Bytes bytes =
            images.MakeBytes("-size 64x48 plasma: -quality " + std::to_string(quality), "quality.jpg");
        const Outcome outcome = ReadFacts(qt::kJpegCodec, bytes);
        EXPECT_NEAR(outcome.facts.description.spatialQuality, quality * 10.24, 20);
    }
    const Bytes png = images.MakeBytes("-size 64x48 plasma:", "lossless.png");
    EXPECT_EQ(ReadFacts(qt::kPngCodec, png).facts.description.spatialQuality, 1024);
}

/// A JPEG with a segment put behind its first two bytes.
Bytes WithSegment(const Bytes& jpeg, std::uint8_t marker, const Bytes& data) {
    Bytes bytes(jpeg.begin(), jpeg.begin() + 2);
    const std::size_t length = data.size() + 2;
    for (const std::size_t byte : {std::size_t{0xFF}, std::size_t{marker}, length >> 8, length & 0xFF}) {
        bytes.push_back(static_cast<std::byte>(byte));
    }
    bytes.insert(bytes.end(), data.begin(), data.end());
    bytes.insert(bytes.end(), jpeg.begin() + 2, jpeg.end());
    return bytes;
}

Bytes BytesOf(std::string_view text) {
    const auto* first = reinterpret_cast<const std::byte*>(text.data());
    return {first, first + text.size()};
}

constexpr std::ptrdiff_t kBehindPngHeader = 33;

void AppendBigEndian(Bytes& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<std::byte>(value >> shift));
}

Bytes PngChunk(const char (&type)[5], const Bytes& data) {
    Bytes bytes;
    AppendBigEndian(bytes, static_cast<std::uint32_t>(data.size()));
    AppendBigEndian(bytes, qt::Code(type));
    for (const std::byte byte : data) bytes.push_back(byte);
    const auto checksum =
        crc32(0, reinterpret_cast<const Bytef*>(bytes.data() + 4), static_cast<uInt>(data.size() + 4));
    AppendBigEndian(bytes, static_cast<std::uint32_t>(checksum));
    return bytes;
}

TEST(ImageCodecs, JpegTakesTheResolutionOfExifWhenThereIsNoOther) {
    using namespace std::string_view_literals;
    const MadeImages images;
    // IM writes a JFIF density of its own only with -density: its unit is undefined here.
    const Bytes jpeg = images.MakeBytes("-size 64x48 plasma: -units Undefined", "plain.jpg");
    constexpr auto kBig =
        "Exif\0\0MM\0*\0\0\0\x08\0\x03"
        "\x01\x1a\0\x05\0\0\0\x01\0\0\0\x32\x01\x1b\0\x05\0\0\0\x01\0\0\0\x3a"
        "\x01\x28\0\x03\0\0\0\x01\0\x02\0\0\0\0\0\0\0\0\x02\x58\0\0\0\x02\0\0\0\x90\0\0\0\x01"sv;
    constexpr auto kLittleCentimetres = "Exif\0\0II*\0\x08\0\0\0\x03\0"
                                        "\x1a\x01\x05\0\x01\0\0\0\x32\0\0\0\x1b\x01\x05\0\x01\0\0\0\x32\0\0\0"
                                        "\x28\x01\x03\0\x01\0\0\0\x03\0\0\0\0\0\0\0\x64\0\0\0\x01\0\0\0"sv;
    constexpr auto kZeroDenominator = "Exif\0\0II*\0\x08\0\0\0\x01\0"
                                      "\x1a\x01\x05\0\x01\0\0\0\x1a\0\0\0\0\0\0\0\x64\0\0\0\0\0\0\0"sv;
    const auto resolution_with = [&](const Bytes& data) {
        const Outcome outcome = ReadFacts(qt::kJpegCodec, WithSegment(jpeg, 0xE1, data));
        EXPECT_EQ(outcome.code, 0);
        return std::pair(Dpi(outcome.facts.description.hRes), Dpi(outcome.facts.description.vRes));
    };
    EXPECT_EQ(resolution_with(BytesOf(kBig)), std::pair(300, 144));
    EXPECT_EQ(resolution_with(BytesOf(kLittleCentimetres)), std::pair(254, 254));
    EXPECT_EQ(resolution_with(BytesOf(kZeroDenominator)), std::pair(72, 72));
    for (std::size_t size = 0; size < kBig.size(); ++size) {
        resolution_with(BytesOf(kBig.substr(0, size))); // ends in some resolution
    }
}

TEST(ImageCodecs, LargeSegmentsAreSteppedOver) {
    const MadeImages images;
    Bytes jpeg = images.MakeBytes("-size 4000x3000 xc:red", "large.jpg");
    Bytes exif = BytesOf("Exif");
    exif.resize(65'000);
    for (int i = 0; i < 20; ++i) jpeg = WithSegment(jpeg, 0xE2, Bytes(65'000));
    jpeg = WithSegment(jpeg, 0xE1, exif);
    const Outcome jpeg_outcome = ReadFacts(qt::kJpegCodec, jpeg);
    EXPECT_EQ(jpeg_outcome.code, 0);
    EXPECT_EQ(jpeg_outcome.facts.description.width, 4000);
    EXPECT_LT(jpeg_outcome.read, 32U * 1024);

    Bytes png = images.MakeBytes("-size 64x48 plasma:", "large.png");
    const Bytes chunk = PngChunk("iCCP", Bytes(3'000'000));
    png.insert(png.begin() + kBehindPngHeader, chunk.begin(), chunk.end());
    EXPECT_EQ(ReadFacts(qt::kPngCodec, png).code, 0);
    EXPECT_LT(ReadFacts(qt::kPngCodec, png).read, 1024U);
}

TEST(ImageCodecs, DimensionsAboveTheLimitAreRefused) {
    const MadeImages images;
    Bytes jpeg = images.MakeBytes("-size 64x48 plasma:", "lying.jpg");
    const Bytes frame = BytesOf(std::string_view("\xFF\xC0\0\x11\x08", 5));
    const auto found = std::search(jpeg.begin(), jpeg.end(), frame.begin(), frame.end());
    ASSERT_NE(found, jpeg.end());
    found[5] = std::byte{0xFF}; // height 0xFF30
    EXPECT_EQ(ReadFacts(qt::kJpegCodec, jpeg).code, codecSizeErr);
    found[5] = found[6] = std::byte{0}; // a height that the scans would have to tell
    EXPECT_EQ(ReadFacts(qt::kJpegCodec, jpeg).code, codecBadDataErr);

    const auto png_of_width = [&](std::uint32_t width) {
        Bytes png = images.MakeBytes("-size 64x48 plasma:", "wide.png");
        Bytes header(png.begin() + 16, png.begin() + 29);
        for (std::size_t i = 0; i < 4; ++i) header[i] = static_cast<std::byte>(width >> (24 - 8 * i));
        const Bytes chunk = PngChunk("IHDR", header);
        std::copy(chunk.begin(), chunk.end(), png.begin() + 8);
        return png;
    };
    EXPECT_EQ(ReadFacts(qt::kPngCodec, png_of_width(30'000)).code, 0);
    EXPECT_EQ(ReadFacts(qt::kPngCodec, png_of_width(30'001)).code, codecSizeErr);
    EXPECT_EQ(ReadFacts(qt::kPngCodec, png_of_width(0)).code, codecBadDataErr);
    EXPECT_EQ(ReadFacts(qt::kPngCodec, png_of_width(0x8000'0000)).code, codecSizeErr);
    Bytes changed = images.MakeBytes("-size 64x48 plasma:", "changed.png");
    changed[19] = std::byte{65}; // the checksum tells
    EXPECT_EQ(ReadFacts(qt::kPngCodec, changed).code, codecBadDataErr);
}

TEST(ImageCodecs, DamagedDataEndsInFactsOrACode) {
    const MadeImages images;
    std::mt19937 random(20'241'103);
    for (const Sample& sample : kSamples) {
        const Bytes whole = images.MakeBytes(sample.arguments, sample.file);
        const qt::ImageCodec& codec = sample.jpeg ? qt::kJpegCodec : qt::kPngCodec;
        const auto expect_sane = [&](const Bytes& bytes) {
            const Outcome outcome = ReadFacts(codec, bytes);
            const ImageDescription& description = outcome.facts.description;
            if (outcome.code != 0) {
                EXPECT_TRUE(outcome.code == codecBadDataErr || outcome.code == codecSizeErr) << outcome.code;
                return;
            }
            EXPECT_GT(description.width, 0);
            EXPECT_GT(description.height, 0);
            EXPECT_LE(std::max(description.width, description.height), std::int16_t{30'000});
            EXPECT_TRUE(description.spatialQuality >= 0 && description.spatialQuality <= 1024);
        };
        const std::size_t header = std::min<std::size_t>(whole.size(), 900);
        for (std::size_t size = 0; size < header; size += 7) {
            expect_sane(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        }
        for (int i = 0; i < 300; ++i) {
            Bytes flipped = whole;
            flipped[random() % header] ^= std::byte{1} << random() % 8;
            expect_sane(flipped);
        }
    }
}

TEST(ImageCodecs, OtherDataIsNotTheirs) {
    EXPECT_EQ(Sniff({}), nullptr);
    EXPECT_EQ(Sniff(BytesOf("GIF88a")), nullptr);
    EXPECT_EQ(Sniff(BytesOf("\x89PNG\r\n\x1a")), nullptr);
    EXPECT_EQ(ReadFacts(qt::kJpegCodec, BytesOf("no picture at all")).code, codecBadDataErr);
    EXPECT_EQ(ReadFacts(qt::kPngCodec, BytesOf("no picture at all")).code, codecBadDataErr);
    EXPECT_EQ(qt::FindImageCodec(qt::Code("JFIF")), &qt::kJpegCodec);
    EXPECT_EQ(qt::FindImageCodec(qt::Code("PNGf")), &qt::kPngCodec);
    EXPECT_EQ(qt::FindImageCodec(qt::Code("jpg ")), nullptr);
}

} // namespace
