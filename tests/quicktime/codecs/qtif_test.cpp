#include "platform/quicktime/movies/atoms.h"
#include "tests/quicktime/codecs/written_images.h"

namespace {

using namespace corvane::test;

constexpr OSType kQtif = qt::Code("qtif");

qt::ExportSettings AtQuality(std::int32_t quality) {
    qt::ExportSettings settings;
    settings.quality = quality;
    return settings;
}

/// A file with the data in front of its description.
Bytes MadeFile(OSType type, int width, int height, int depth, const Bytes& data, const Bytes& colours = {}) {
    qt::AtomWriter file;
    const auto put16 = [&](int value) { file.Put16(static_cast<std::uint16_t>(value)); };
    file.Atom(qt::Code("idat"), [&] { file.Put(data); });
    file.Atom(qt::Code("free"), [&] { file.Zeros(4); });
    file.Atom(qt::Code("idsc"), [&] {
        file.Put32(static_cast<std::uint32_t>(86 + colours.size()));
        file.Put32(type);
        file.Zeros(24);
        put16(width);
        put16(height);
        file.Put32(150 << 16);
        file.Put32(72 << 16);
        file.Put32(static_cast<std::uint32_t>(data.size()));
        put16(1);
        file.Zeros(32);
        put16(depth);
        put16(colours.empty() ? -1 : 0);
        file.Put(colours);
    });
    return file.Take();
}

qt::PixelImage Decoded(const Bytes& file) {
    return DecodeWhole(qt::kQuickTimeImageCodec, file);
}

TEST(Qtif, PlainPixelsOfEveryDepth) {
    const struct {
        int width;
        int depth;
        Bytes data;
        Pixels pixels;
    } cases[] = {
        {2, 32, BytesOf({128, 1, 2, 3, 255, 4, 5, 6}), {0x80010203, 0xFF040506}},
        {1, 32, BytesOf({0, 1, 2, 3}), {0xFF010203}}, // the byte is unused
        {1, 24, BytesOf({1, 2, 3, 0}), {0xFF010203}}, // rows of even length
        {2, 16, BytesOf({0x7C, 0, 0, 0x1F}), {0xFFFF0000, 0xFF0000FF}},
        {2, 40, BytesOf({0, 0xF0}), {0xFFFFFFFF, 0xFF0F0F0F}},
        {3, 8, BytesOf({0, 255, 35, 0}), {0xFFFFFFFF, 0xFF000000, 0xFFFF0000}},
        {2, 4, BytesOf({0x3F, 0}), {0xFFDD0806, 0xFF000000}},
        {2, 1, BytesOf({0x40, 0}), {0xFFFFFFFF, 0xFF000000}},
    };
    for (const auto& [width, depth, data, pixels] : cases)
        EXPECT_EQ(PixelsOf(Decoded(MadeFile(qt::Code("raw "), width, 1, depth, data))), pixels) << depth;
    const Bytes colours =
        BytesOf({0, 0, 0, 0, 0x80, 0, 0, 1, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0});
    EXPECT_EQ(PixelsOf(Decoded(MadeFile(qt::Code("raw "), 2, 1, 8, BytesOf({0, 1}), colours))),
              (Pixels{0xFF00FF00, 0xFFFF0000}));
}

TEST(Qtif, DataOfOtherFormats) {
    const MadeImages images;
    const Bytes png = images.MakeBytes("-size 9x7 xc:blue -depth 8", "png24:blue.png");
    const Bytes file = MadeFile(qt::Code("png "), 9, 7, 24, png);
    EXPECT_EQ(PixelsOf(Decoded(file)), Pixels(9 * 7, 0xFF0000FF));
    const qt::ImageFacts facts = FactsOf(qt::kQuickTimeImageCodec, file);
    EXPECT_EQ(facts.description.cType, qt::Code("png "));
    EXPECT_EQ(ResolutionOf(qt::kQuickTimeImageCodec, file), std::pair(150, 72));
    EXPECT_EQ(facts.data_offset, 8U);
    EXPECT_EQ(facts.data_size, png.size());
    qt::AtomWriter writer; // the same with a size of 64 bits
    writer.Put32(1);
    writer.Put32(qt::Code("idat"));
    writer.Put64(16 + png.size());
    writer.Put(std::span(file).subspan(8));
    const Bytes wide = writer.Take();
    EXPECT_EQ(PixelsOf(Decoded(wide)), PixelsOf(Decoded(file)));
    EXPECT_EQ(FactsOf(qt::kQuickTimeImageCodec, wide).data_offset, 16U);
    // An image file inside an image file, and a format that nobody has.
    for (const OSType type : {kQtif, qt::Code("????")})
        ExpectNoRoomIsTaken(qt::kQuickTimeImageCodec, MadeFile(type, 9, 7, 24, file), codecBadDataErr);
}

TEST(Qtif, WritesJpegsAndLosslessPixelsThatSurviveDamage) {
    const MadeImages images;
    const auto image = MadeImage(images, "-size 61x33 plasma: -type TrueColor");
    const auto transparent = MadeImage(images, "-size 61x33 plasma: -alpha set -channel A -fx u.r +channel");
    const Bytes small = Written(kQtif, image, AtQuality(100));
    const Bytes large = Written(kQtif, image, AtQuality(1000));
    EXPECT_LT(small.size(), large.size());
    EXPECT_EQ(FactsOf(qt::kQuickTimeImageCodec, large).description.cType, qt::Code("jpeg"));
    const Bytes pixels = RgbaOf(Decoded(large));
    EXPECT_LE(Difference(pixels, RgbaOf(image)), 24);
    const Bytes jpeg(large.begin() + 102, large.end());
    EXPECT_EQ(Difference(pixels, MagickReads(images, jpeg, "inner.jpg")), 0);
    for (const auto* source : {&image, &transparent}) {
        const Bytes lossless = Written(kQtif, *source, AtQuality(1024));
        EXPECT_EQ(FactsOf(qt::kQuickTimeImageCodec, lossless).description.depth, source->has_alpha ? 32 : 24);
        EXPECT_EQ(Difference(RgbaOf(Decoded(lossless)), RgbaOf(*source)), 0);
        ExpectDamageIsSurvived(qt::kQuickTimeImageCodec, lossless, 600);
    }
    EXPECT_EQ(Difference(RgbaOf(Decoded(Written(kQtif, transparent))), RgbaOf(transparent)), 0);
    ExpectDamageIsSurvived(qt::kQuickTimeImageCodec, large, 600);
}

TEST(Qtif, PassesCompressedDataOn) {
    const MadeImages images;
    const Bytes jpeg = images.MakeBytes("-size 61x33 plasma:", "source.jpg");
    const auto source = qt::MemorySource(std::span(jpeg));
    const qt::ImageFacts facts = FactsOf(qt::kJpegCodec, jpeg);
    const qt::ImageExporter& exporter = *qt::FindImageExporter(kQtif);
    qt::EncodedBytes out;
    ASSERT_TRUE(exporter.transcode(*source, facts.description, {}, out));
    EXPECT_EQ(Bytes(out.begin() + 102, out.end()), jpeg);
    EXPECT_EQ(FactsOf(qt::kQuickTimeImageCodec, out).description.width, 61);
    EXPECT_FALSE(exporter.transcode(*source, facts.description, AtDepth(40), out));
    const auto wrapped = qt::MemorySource(std::span(std::as_const(out)));
    EXPECT_FALSE(exporter.transcode(*wrapped, facts.description, {}, out));
}

} // namespace
