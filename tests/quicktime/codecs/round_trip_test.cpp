// Every exporter that keeps pixels exactly, through the importer of the same type, and through ImageMagick.
#include "platform/quicktime/image_exporters/exporter.h"
#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using namespace corvane::test;

/// Gradients, runs, single pixels and, with alpha, every degree of it.
qt::PixelImage MadeImage(std::int32_t width, std::int32_t height, bool has_alpha) {
    std::mt19937 random(7);
    qt::PixelImage image = MakeImage(width, height, [&](int x, int y) {
        const auto across = static_cast<std::uint32_t>(x);
        const auto down = static_cast<std::uint32_t>(y);
        const std::uint32_t alpha = has_alpha ? (across * 5 + down) & 255 : 255;
        const bool is_run = y % 4 == 1 && x > width / 3;
        return is_run ? qt::Pixel(200, 100, 50, has_alpha ? 90 : 255)
                      : qt::Pixel(across * 3 & 255, down * 5 & 255, random() & 255, alpha);
    });
    image.has_alpha = has_alpha;
    return image;
}

struct Case {
    const qt::ImageExporter* exporter;
    std::int32_t depth; ///< of the pixels that come back exactly
    std::optional<std::int32_t> method;
};

std::string NameOf(const Case& tried) {
    return std::string(tried.exporter->extension) + " of depth " + std::to_string(tried.depth) + ", method " +
           std::to_string(tried.method.value_or(-1));
}

const Case kCases[] = {
    {&qt::kBmpExporter, 24, {}},      {&qt::kBmpExporter, 32, {}},      {&qt::kTgaExporter, 24, {}},
    {&qt::kTgaExporter, 32, {}},      {&qt::kTgaExporter, 24, 1},       {&qt::kTgaExporter, 32, 1},
    {&qt::kSgiExporter, 24, {}},      {&qt::kSgiExporter, 32, {}},      {&qt::kSgiExporter, 24, 1},
    {&qt::kTiffExporter, 24, {}},     {&qt::kTiffExporter, 32, {}},     {&qt::kTiffExporter, 24, 32'773},
    {&qt::kTiffExporter, 32, 5},      {&qt::kTiffExporter, 24, 8},      {&qt::kTiffExporter, 24, 5},
    {&qt::kJpeg2000Exporter, 24, {}}, {&qt::kJpeg2000Exporter, 32, {}},
};

Bytes Encoded(const qt::ImageExporter& exporter, const qt::PixelImage& image,
              const qt::ExportSettings& settings) {
    qt::EncodedBytes bytes(3, std::byte{7}); // what stands there already stays
    EXPECT_EQ(exporter.encode(image, settings, bytes), noErr);
    EXPECT_EQ(bytes[2], std::byte{7});
    bytes.erase(bytes.begin(), bytes.begin() + 3);
    return bytes;
}

qt::PixelImage ReadBack(const Bytes& bytes) {
    const qt::ImageCodec* codec = SniffedCodec(bytes);
    EXPECT_NE(codec, nullptr);
    return codec != nullptr ? DecodeWhole(*codec, bytes) : qt::PixelImage();
}

/// As ImageMagick reads these bytes.
Bytes MagickReads(const MadeImages& images, const qt::ImageExporter& exporter, const Bytes& bytes) {
    const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::string path = images.folder.MakeFile("written." + std::string(exporter.extension), text);
    return MagickRgba(images, path, "-auto-orient");
}

TEST(RoundTrip, PixelsAndResolutionStay) {
    const MadeImages images;
    for (const Case& tried : kCases) {
        for (const auto& [width, height] : {std::pair(67, 41), std::pair(1, 1), std::pair(300, 5)}) {
            SCOPED_TRACE(NameOf(tried) + ", width " + std::to_string(width));
            const qt::PixelImage image = MadeImage(width, height, tried.depth == 32);
            const Bytes bytes =
                Encoded(*tried.exporter, image, {tried.depth, 2400 << 16, 150 << 16, 1024, {}, tried.method});
            EXPECT_EQ(Difference(RgbaOf(ReadBack(bytes)), RgbaOf(image)), 0);
            EXPECT_EQ(Difference(MagickReads(images, *tried.exporter, bytes), RgbaOf(image)), 0);
            const bool has_resolution =
                tried.exporter != &qt::kTgaExporter && tried.exporter != &qt::kSgiExporter;
            const qt::ImageCodec* codec = qt::FindImageCodec(tried.exporter->types[0]);
            ASSERT_NE(codec, nullptr);
            const ImageDescription description = FactsOf(*codec, bytes).description;
            EXPECT_EQ(description.depth, tried.depth);
            EXPECT_EQ(description.spatialQuality, 1024);
            EXPECT_EQ(ResolutionOf(*codec, bytes), has_resolution ? std::pair(2400, 150) : std::pair(72, 72));
            EXPECT_EQ(qt::FindImageExporter(description.cType), tried.exporter);
        }
    }
}

TEST(RoundTrip, EveryDepthIsReadAlike) {
    const MadeImages images;
    const qt::PixelImage colours = MadeImage(67, 41, false);
    const qt::PixelImage translucent = MadeImage(67, 41, true);
    for (const qt::ImageExporter* exporter :
         {&qt::kBmpExporter, &qt::kGifExporter, &qt::kTgaExporter, &qt::kSgiExporter, &qt::kTiffExporter,
          &qt::kJpeg2000Exporter}) {
        for (const std::int32_t depth : {1, 2, 4, 8, 16, 24, 32, 33, 34, 36, 40, 5, 0}) {
            for (const qt::PixelImage* image : {&colours, &translucent}) {
                SCOPED_TRACE(std::string(exporter->extension) + " of depth " + std::to_string(depth));
                qt::ExportSettings settings;
                if (depth != 0) settings.depth = depth;
                const Bytes bytes = Encoded(*exporter, *image, settings);
                const qt::PixelImage back = ReadBack(bytes);
                EXPECT_EQ(back.width(), image->width());
                const int tolerance = exporter == &qt::kTgaExporter && depth == 16 ? 7 : 0;
                const int difference = Difference(RgbaOf(back), MagickReads(images, *exporter, bytes));
                EXPECT_TRUE(difference >= 0 && difference <= tolerance) << difference;
                EXPECT_TRUE(depth < 33 || back.is_grey);
                EXPECT_TRUE(depth != 32 || image == &colours || back.has_alpha ||
                            exporter == &qt::kGifExporter);
            }
        }
    }
}

TEST(RoundTrip, FewColoursStayExact) {
    const MadeImages images;
    constexpr std::uint32_t kColours[] = {0xFF102030, 0xFFC0B0A0, 0xFF00FF00, 0xFFFFFFFF};
    qt::PixelImage image = MakeImage(33, 20, [&](int x, int y) { return kColours[(x * y + x) % 4]; });
    for (const qt::ImageExporter* exporter :
         {&qt::kBmpExporter, &qt::kGifExporter, &qt::kTgaExporter, &qt::kTiffExporter}) {
        for (const std::int32_t depth : {2, 4, 8}) {
            for (const std::int32_t method : {0, 1}) {
                SCOPED_TRACE(std::string(exporter->extension) + " of depth " + std::to_string(depth));
                const Bytes bytes = Encoded(*exporter, image, {depth, {}, {}, {}, {}, method});
                EXPECT_EQ(Difference(RgbaOf(ReadBack(bytes)), RgbaOf(image)), 0);
                EXPECT_EQ(Difference(MagickReads(images, *exporter, bytes), RgbaOf(image)), 0);
            }
        }
    }
    std::fill_n(image.Row(7), 33, 0x00102030);
    image.has_alpha = true;
    const Bytes gif = Encoded(qt::kGifExporter, image, {});
    EXPECT_EQ(Difference(RgbaOf(ReadBack(gif)), RgbaOf(image)), 0);
    EXPECT_EQ(Difference(MagickReads(images, qt::kGifExporter, gif), RgbaOf(image)), 0);
}

// Pictures are written in parts; one of these here is transparent throughout.
TEST(RoundTrip, APictureIsTransparentInParts) {
    for (const bool left : {true, false}) {
        qt::PixelImage image = MakeImage(
            64, 4, [&](int x, int) { return (x < 32) == left ? 0U : qt::Pixel(200, 100, 50, 255); });
        image.has_alpha = true;
        const qt::PixelImage back = ReadBack(Encoded(qt::kPictExporter, image, {}));
        EXPECT_TRUE(back.has_alpha);
        EXPECT_EQ(back.Row(2)[left ? 10 : 50], 0U);
        EXPECT_EQ(back.Row(2)[left ? 50 : 10], qt::Pixel(200, 100, 50, 255));
    }
}

TEST(RoundTrip, Jpeg2000FollowsQualityAndSize) {
    const MadeImages images;
    const Bytes plasma =
        images.MakeBytes("-size 400x300 plasma: -blur 0x1 -type TrueColor", "bmp3:plasma.bmp");
    const qt::PixelImage image = DecodeWhole(qt::kBmpCodec, plasma);
    std::size_t last_size = 0;
    double last_likeness = 0;
    for (const std::int32_t quality : {0, 256, 512, 768, 1023, 1024}) {
        SCOPED_TRACE(quality);
        const Bytes bytes = Encoded(qt::kJpeg2000Exporter, image, {{}, {}, {}, quality, {}, {}});
        const double likeness = Psnr(RgbaOf(image), RgbaOf(ReadBack(bytes)));
        EXPECT_GT(bytes.size(), last_size);
        EXPECT_GT(likeness, last_likeness);
        last_size = bytes.size();
        last_likeness = likeness;
    }
    EXPECT_TRUE(std::isinf(last_likeness)) << "without loss";
    for (const std::uint32_t target : {3'000U, 20'000U, 60'000U}) {
        SCOPED_TRACE(target);
        const Bytes bytes = Encoded(qt::kJpeg2000Exporter, image, {{}, {}, {}, 100, target, {}});
        EXPECT_LE(bytes.size(), target);
        EXPECT_GT(bytes.size(), target * 9 / 10);
    }
}

TEST(RoundTrip, Jpeg2000OfSeveralTiles) {
    const MadeImages images;
    for (const std::int32_t depth : {32, 40}) {
        SCOPED_TRACE(depth);
        const qt::PixelImage image = MadeImage(1'100, 1'030, depth == 32);
        const Bytes bytes = Encoded(qt::kJpeg2000Exporter, image, {depth, {}, {}, 1024, {}, {}});
        const Bytes back = RgbaOf(ReadBack(bytes));
        EXPECT_TRUE(depth == 40 || back == RgbaOf(image));
        EXPECT_EQ(Difference(MagickReads(images, qt::kJpeg2000Exporter, bytes), back), 0);
    }
    const qt::PixelImage image = MadeImage(1'100, 1'030, false);
    const Bytes small = Encoded(qt::kJpeg2000Exporter, image, {{}, {}, {}, {}, 100'000, {}});
    EXPECT_LE(small.size(), 100'000U);
    EXPECT_GT(small.size(), 90'000U);
}

TEST(RoundTrip, PassesOnWhatIsAsAsked) {
    for (const qt::ImageExporter* exporter :
         {&qt::kPngExporter, &qt::kTiffExporter, &qt::kGifExporter, &qt::kBmpExporter, &qt::kTgaExporter,
          &qt::kSgiExporter, &qt::kPhotoshopExporter, &qt::kJpeg2000Exporter}) {
        SCOPED_TRACE(exporter->description);
        const Bytes bytes = Encoded(*exporter, MadeImage(67, 41, false), {{}, {}, {}, 300, {}, {}});
        const auto source = qt::MemorySource(std::span(bytes));
        const int depth = FactsOf(*SniffedCodec(bytes), bytes).description.depth;
        const auto passes = [&](const qt::ExportSettings& settings) {
            qt::EncodedBytes out;
            const bool passed = exporter->transcode(*source, {}, settings, out);
            EXPECT_EQ(out, passed ? bytes : Bytes());
            return passed;
        };
        EXPECT_TRUE(passes({depth, (72 << 16) + 99, 72 << 16, 1024, {}, {}}));
        EXPECT_FALSE(passes({1, {}, {}, {}, {}, {}}));
        EXPECT_FALSE(passes({{}, 300 << 16, 300 << 16, {}, {}, {}}));
        EXPECT_FALSE(passes({{}, {}, {}, {}, static_cast<std::uint32_t>(bytes.size() - 1), {}}));
        EXPECT_FALSE(passes({{}, {}, {}, {}, {}, 1}));
    }
    // Another format can't be passed on, nor one of several images.
    const Bytes bmp = Encoded(qt::kBmpExporter, MadeImage(5, 5, false), {});
    const Bytes two = MadeImages().MakeBytes("-size 8x8 xc:red xc:blue", "two.gif");
    qt::EncodedBytes out;
    EXPECT_FALSE(qt::kPngExporter.transcode(*qt::MemorySource(std::span(bmp)), {}, {}, out));
    EXPECT_FALSE(qt::kGifExporter.transcode(*qt::MemorySource(std::span(two)), {}, {}, out));
}

} // namespace
