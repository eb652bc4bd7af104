// What headers tell, and how little of a file is read for it.
#include "platform/quicktime/image_exporters/exporter.h"
#include "platform/quicktime/movies/atoms.h"
#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <zlib.h>

namespace {

using namespace corvane::test;

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

/// Bytes that are read for the facts of an image of this width.
std::uint64_t ReadForFacts(const qt::ImageCodec& codec, const Bytes& bytes, int width) {
    CountingSource source(bytes);
    qt::ImageFacts facts;
    EXPECT_EQ(codec.read_facts(source, facts), noErr);
    EXPECT_EQ(facts.description.width, width);
    return source.read;
}

TEST(ImageFacts, OfJpegAndPng) {
    const MadeImages images;
    const struct {
        const char* arguments;
        const char* file;
        std::pair<int, int> resolution;
    } cases[] = {
        {"-units PixelsPerInch -density 300x150", "dpi.jpg", {300, 150}},
        {"-units PixelsPerCentimeter -density 100", "dpcm.jpg", {254, 254}},
        {"-units Undefined -density 3x2", "aspect.jpg", {72, 72}},
        {"-interlace Plane", "progressive.jpg", {72, 72}},
        {"-units PixelsPerInch -density 300x150", "dpi.png", {300, 150}},
        {"", "plain.png", {72, 72}},
    };
    for (const auto& made : cases) {
        SCOPED_TRACE(made.file);
        const Bytes bytes = images.MakeBytes(std::string("-size 65x31 plasma: ") + made.arguments, made.file);
        const bool is_jpeg = std::string_view(made.file).ends_with("jpg");
        const qt::ImageCodec& codec = is_jpeg ? qt::kJpegCodec : qt::kPngCodec;
        const qt::ImageFacts facts = FactsOf(codec, bytes);
        const ImageDescription& description = facts.description;
        EXPECT_EQ(description.width, 65);
        EXPECT_EQ(description.height, 31);
        EXPECT_EQ(ResolutionOf(codec, bytes), made.resolution);
        EXPECT_EQ(description.cType, is_jpeg ? qt::Code("jpeg") : qt::Code("png "));
        EXPECT_EQ(facts.data_offset, 0U);
        EXPECT_EQ(facts.image_count, 1U);
        EXPECT_EQ(description.spatialQuality == 1024, !is_jpeg) << "without loss";
    }
    for (const int quality : {10, 25, 50, 75, 90, 100}) {
        const Bytes bytes =
            images.MakeBytes("-size 64x48 plasma: -quality " + std::to_string(quality), "quality.jpg");
        EXPECT_NEAR(FactsOf(qt::kJpegCodec, bytes).description.spatialQuality, quality * 10.24, 20);
    }
}

constexpr std::ptrdiff_t kBehindPngHeader = 33;

Bytes PngChunk(const char (&type)[5], const Bytes& data) {
    qt::AtomWriter checked;
    checked.Put32(qt::Code(type));
    checked.Put(data);
    const Bytes content = checked.Take();
    qt::AtomWriter writer;
    writer.Put32(static_cast<std::uint32_t>(data.size()));
    writer.Put(content);
    const auto* first = reinterpret_cast<const Bytef*>(content.data());
    writer.Put32(static_cast<std::uint32_t>(crc32(0, first, static_cast<uInt>(content.size()))));
    return writer.Take();
}

TEST(PngPixels, AreNotReadFurtherThanTheyReach) {
    const MadeImages images;
    const Bytes plain = images.MakeBytes("-size 64x48 plasma: -define png:exclude-chunk=all", "png24:a.png");
    Bytes padded = plain;
    const Bytes filler = PngChunk("IDAT", Bytes(1 << 20));
    padded.insert(padded.end() - 12, filler.begin(), filler.end()); // in front of the end's chunk
    CountingSource source(padded);
    qt::PixelImage image;
    ASSERT_EQ(qt::kPngCodec.decode(source, 1, image), noErr);
    EXPECT_LT(source.read, 100'000U);
    EXPECT_EQ(RgbaOf(image), RgbaOf(DecodeWhole(qt::kPngCodec, plain)));
}

TEST(ImageFacts, JpegTakesTheResolutionOfExifWhenThereIsNoOther) {
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
    const auto resolution_with = [&](std::string_view exif) {
        return ResolutionOf(qt::kJpegCodec, WithSegment(jpeg, 0xE1, exif));
    };
    EXPECT_EQ(resolution_with(kBig), std::pair(300, 144));
    EXPECT_EQ(resolution_with(kLittleCentimetres), std::pair(254, 254));
    EXPECT_EQ(resolution_with(kZeroDenominator), std::pair(72, 72));
    std::string ratio(kBig);
    ratio[ratio.find("\x01\x28") + 9] = 1; // no unit
    EXPECT_EQ(resolution_with(ratio), std::pair(72, 72));
    for (std::size_t size = 0; size < kBig.size(); ++size)
        resolution_with(kBig.substr(0, size)); // ends in some resolution
}

TEST(ImageFacts, ComeFromTheHeaderAlone) {
    const MadeImages images;
    Bytes jpeg = images.MakeBytes("-size 4000x3000 xc:red", "large.jpg");
    for (int i = 0; i < 20; ++i) jpeg = WithSegment(jpeg, 0xE2, std::string(65'000, '\0'));
    jpeg = WithSegment(jpeg, 0xE1, "Exif" + std::string(64'996, '\0'));
    EXPECT_LT(ReadForFacts(qt::kJpegCodec, jpeg, 4000), 32U * 1024);

    Bytes png = images.MakeBytes("-size 64x48 plasma:", "large.png");
    const Bytes chunk = PngChunk("iCCP", Bytes(3'000'000));
    png.insert(png.begin() + kBehindPngHeader, chunk.begin(), chunk.end());
    EXPECT_LT(ReadForFacts(qt::kPngCodec, png, 64), 1024U);

    const qt::PixelImage image = MakeImage(2'000, 1'500, [](int x, int y) {
        return 0xFF000000 | static_cast<std::uint32_t>(y * 2'000 + x) * 2'654'435'761U >> 8;
    });
    qt::ExportSettings settings;
    settings.depth = 24;
    for (const qt::ImageExporter* exporter : {&qt::kBmpExporter, &qt::kTgaExporter, &qt::kSgiExporter,
                                              &qt::kTiffExporter, &qt::kJpeg2000Exporter}) {
        SCOPED_TRACE(exporter->extension);
        qt::EncodedBytes bytes;
        ASSERT_EQ(exporter->encode(image, settings, bytes), noErr);
        EXPECT_LT(ReadForFacts(*qt::FindImageCodec(exporter->types[0]), bytes, 2'000), 16U * 1024);
    }
}

TEST(ImageFacts, OfDimensionsAboveTheLimitAreRefused) {
    const MadeImages images;
    Bytes jpeg = images.MakeBytes("-size 64x48 plasma:", "lying.jpg");
    const Bytes frame = BytesOf({0xFF, 0xC0, 0, 0x11, 8});
    const auto found = std::search(jpeg.begin(), jpeg.end(), frame.begin(), frame.end());
    ASSERT_NE(found, jpeg.end());
    found[5] = std::byte{0xFF}; // height 0xFF30
    EXPECT_EQ(FactsCode(qt::kJpegCodec, jpeg), codecSizeErr);
    found[5] = found[6] = std::byte{0}; // a height that the scans would have to tell
    EXPECT_EQ(FactsCode(qt::kJpegCodec, jpeg), codecBadDataErr);

    const Bytes whole = images.MakeBytes("-size 64x48 plasma:", "wide.png");
    const auto code_of_width = [&](std::uint32_t width) {
        Bytes header(whole.begin() + 16, whole.begin() + kBehindPngHeader - 4);
        for (std::size_t i = 0; i < 4; ++i) header[i] = static_cast<std::byte>(width >> (24 - 8 * i));
        Bytes png = whole;
        std::ranges::copy(PngChunk("IHDR", header), png.begin() + 8);
        return FactsCode(qt::kPngCodec, png);
    };
    EXPECT_EQ(code_of_width(30'000), noErr);
    EXPECT_EQ(code_of_width(30'001), codecSizeErr);
    EXPECT_EQ(code_of_width(0), codecBadDataErr);
    EXPECT_EQ(code_of_width(0x8000'0000), codecSizeErr);
    Bytes changed = whole;
    changed[19] = std::byte{65}; // the checksum tells
    EXPECT_EQ(FactsCode(qt::kPngCodec, changed), codecBadDataErr);
}

TEST(ImageFacts, OtherDataIsNotTheirs) {
    for (const char* other : {"", "GIF88a", "\x89PNG\r\n\x1a", "no picture at all"}) {
        EXPECT_EQ(SniffedCodec(BytesOf(other)), nullptr) << other;
        for (const qt::ImageCodec* codec : {&qt::kJpegCodec, &qt::kPngCodec})
            EXPECT_EQ(FactsCode(*codec, BytesOf(other)), codecBadDataErr) << other;
    }
    EXPECT_EQ(qt::FindImageCodec(qt::Code("JFIF")), &qt::kJpegCodec);
    EXPECT_EQ(qt::FindImageCodec(qt::Code("jpg ")), nullptr);
}

} // namespace
