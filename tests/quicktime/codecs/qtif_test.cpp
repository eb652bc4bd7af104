#include "tests/quicktime/codecs/written_images.h"

namespace {

using namespace corvane::test;

constexpr OSType kQtif = qt::Code("qtif");

qt::ExportSettings AtQuality(std::int32_t quality) {
    qt::ExportSettings settings;
    settings.quality = quality;
    return settings;
}

void Put(Bytes& bytes, std::size_t value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::byte>(value >> shift));
}

/// A file with the data in front of its description.
Bytes MadeFile(OSType type, int width, int height, int depth, const Bytes& data, const Bytes& colours = {}) {
    Bytes bytes;
    Put(bytes, 8 + data.size(), 4);
    Put(bytes, qt::Code("idat"), 4);
    bytes.insert(bytes.end(), data.begin(), data.end());
    Put(bytes, 12, 4);
    Put(bytes, qt::Code("free"), 4);
    Put(bytes, 0, 4);
    Put(bytes, 8 + 86 + colours.size(), 4);
    Put(bytes, qt::Code("idsc"), 4);
    Put(bytes, 86 + colours.size(), 4);
    Put(bytes, type, 4);
    bytes.resize(bytes.size() + 24);
    Put(bytes, static_cast<std::size_t>(width), 2);
    Put(bytes, static_cast<std::size_t>(height), 2);
    Put(bytes, 150 << 16, 4);
    Put(bytes, 72 << 16, 4);
    Put(bytes, data.size(), 4);
    Put(bytes, 1, 2);
    bytes.resize(bytes.size() + 32);
    Put(bytes, static_cast<std::size_t>(depth), 2);
    Put(bytes, colours.empty() ? 0xFFFF : 0, 2);
    bytes.insert(bytes.end(), colours.begin(), colours.end());
    return bytes;
}

Bytes Of(std::initializer_list<int> values) {
    Bytes bytes;
    for (const int value : values) bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

std::vector<std::uint32_t> FirstRow(const Bytes& file) {
    const auto image = DecodeWhole(qt::kQuickTimeImageCodec, file);
    return {image.Row(0), image.Row(0) + image.width()};
}

TEST(Qtif, PlainPixelsOfEveryDepth) {
    using Row = std::vector<std::uint32_t>;
    constexpr OSType kRaw = qt::Code("raw ");
    EXPECT_EQ(FirstRow(MadeFile(kRaw, 2, 1, 32, Of({128, 1, 2, 3, 255, 4, 5, 6}))),
              (Row{0x80010203, 0xFF040506}));
    EXPECT_EQ(FirstRow(MadeFile(kRaw, 1, 1, 32, Of({0, 1, 2, 3}))), (Row{0xFF010203})); // the byte is unused
    EXPECT_EQ(FirstRow(MadeFile(kRaw, 1, 1, 24, Of({1, 2, 3, 0}))), (Row{0xFF010203})); // rows of even length
    EXPECT_EQ(FirstRow(MadeFile(kRaw, 2, 1, 16, Of({0x7C, 0, 0, 0x1F}))), (Row{0xFFFF0000, 0xFF0000FF}));
    EXPECT_EQ(FirstRow(MadeFile(kRaw, 2, 1, 40, Of({0, 0xF0}))), (Row{0xFFFFFFFF, 0xFF0F0F0F}));
    EXPECT_EQ(FirstRow(MadeFile(kRaw, 3, 1, 8, Of({0, 255, 35, 0}))),
              (Row{0xFFFFFFFF, 0xFF000000, 0xFFFF0000}));
    EXPECT_EQ(FirstRow(MadeFile(kRaw, 2, 1, 4, Of({0x3F, 0}))), (Row{0xFFDD0806, 0xFF000000}));
    EXPECT_EQ(FirstRow(MadeFile(kRaw, 2, 1, 1, Of({0x40, 0}))), (Row{0xFFFFFFFF, 0xFF000000}));
    const Bytes colours =
        Of({0, 0, 0, 0, 0x80, 0, 0, 1, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0});
    EXPECT_EQ(FirstRow(MadeFile(kRaw, 2, 1, 8, Of({0, 1}), colours)), (Row{0xFF00FF00, 0xFFFF0000}));
}

TEST(Qtif, DataOfOtherFormats) {
    const MadeImages images;
    const Bytes png = images.MakeBytes("-size 9x7 xc:blue -depth 8", "png24:blue.png");
    const Bytes file = MadeFile(qt::Code("png "), 9, 7, 24, png);
    EXPECT_EQ(FirstRow(file), std::vector<std::uint32_t>(9, 0xFF0000FF));
    const qt::ImageFacts facts = FactsOf(qt::kQuickTimeImageCodec, file);
    EXPECT_EQ(facts.description.cType, qt::Code("png "));
    EXPECT_EQ(facts.description.hRes, 150 << 16);
    EXPECT_EQ(facts.data_offset, 8U);
    EXPECT_EQ(facts.data_size, png.size());
    Bytes wide; // the same with a size of 64 bits
    Put(wide, 1, 4);
    Put(wide, qt::Code("idat"), 4);
    Put(wide, 16 + png.size(), 8);
    wide.insert(wide.end(), file.begin() + 8, file.end());
    EXPECT_EQ(FirstRow(wide), FirstRow(file));
    EXPECT_EQ(FactsOf(qt::kQuickTimeImageCodec, wide).data_offset, 16U);
    // An image file inside an image file, and a format that nobody has.
    qt::PixelImage image;
    for (const OSType type : {kQtif, qt::Code("????")}) {
        const Bytes nested = MadeFile(type, 9, 7, 24, file);
        EXPECT_EQ(qt::kQuickTimeImageCodec.decode(*qt::MemorySource(std::span(nested)), 1, image),
                  codecBadDataErr);
    }
}

TEST(Qtif, WritesJpegsAndLosslessPixels) {
    const MadeImages images;
    const auto image = MadeImage(images, "-size 61x33 plasma: -type TrueColor");
    const auto transparent = MadeImage(images, "-size 61x33 plasma: -alpha set -channel A -fx u.r +channel");
    const Bytes small = Written(kQtif, image, AtQuality(100));
    const Bytes large = Written(kQtif, image, AtQuality(1000));
    EXPECT_LT(small.size(), large.size());
    EXPECT_EQ(FactsOf(qt::kQuickTimeImageCodec, large).description.cType, qt::Code("jpeg"));
    EXPECT_LE(Difference(RgbaOf(DecodeWhole(qt::kQuickTimeImageCodec, large)), RgbaOf(image)), 24);
    const Bytes jpeg(large.begin() + 102, large.end());
    EXPECT_EQ(Difference(RgbaOf(DecodeWhole(qt::kQuickTimeImageCodec, large)),
                         MagickReads(images, jpeg, "inner.jpg")),
              0);
    for (const auto* source : {&image, &transparent}) {
        const Bytes lossless = Written(kQtif, *source, AtQuality(1024));
        EXPECT_EQ(FactsOf(qt::kQuickTimeImageCodec, lossless).description.depth, source->has_alpha ? 32 : 24);
        EXPECT_EQ(Difference(RgbaOf(DecodeWhole(qt::kQuickTimeImageCodec, lossless)), RgbaOf(*source)), 0);
    }
    EXPECT_EQ(Difference(RgbaOf(DecodeWhole(qt::kQuickTimeImageCodec, Written(kQtif, transparent))),
                         RgbaOf(transparent)),
              0);
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

TEST(Qtif, SurvivesDamage) {
    const MadeImages images;
    const auto image = MadeImage(images, "-size 61x33 plasma: -type TrueColor");
    ExpectDamageIsSurvived(qt::kQuickTimeImageCodec, Written(kQtif, image), 600);
    ExpectDamageIsSurvived(qt::kQuickTimeImageCodec, Written(kQtif, image, AtQuality(1024)), 600);
}

} // namespace
