#include "tests/quicktime/codecs/made_picture.h"
#include "tests/quicktime/codecs/written_images.h"

#include <gtest/gtest.h>

namespace {

using namespace corvane::test;

constexpr OSType kPict = qt::Code("PICT");

constexpr Sample kSamples[] = {
    {"-size 97x41 plasma: -depth 8", "rgb.pict", 24},
    {"-size 64x41 plasma: -depth 8", "misread_counts.pict", 24},
    {"-size 97x41 plasma: -depth 8 -colors 100 -depth 8", "palette.pict", 8},
    {"-size 225x41 plasma: -depth 8 -colors 100 -depth 8", "misread_palette.pict", 8},
    {"-size 5x9 xc:red -depth 8", "small.pict", 24},
};

TEST(PictCodec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kPictCodec, kSamples);
}

/// ImageMagick writes transparency, but reads none.
Bytes Opaque(Bytes rgba) {
    for (std::size_t i = 3; i < rgba.size(); i += 4) rgba[i] = std::byte{255};
    return rgba;
}

constexpr const char* kSeenThrough = " -alpha set -channel A -fx '(i%7+1)/7' +channel";

TEST(PictCodec, ReadsTransparency) {
    const MadeImages images;
    const Bytes source = images.MakeBytes(
        std::string("-size 97x41 plasma: -depth 8") + kSeenThrough + " -depth 8", "source.png");
    const Bytes picture = images.MakeBytes("'" + images.folder.Path("source.png") + "'", "picture.pict");
    EXPECT_EQ(FactsOf(qt::kPictCodec, picture).description.depth, 32);
    EXPECT_EQ(
        Difference(RgbaOf(DecodeWhole(qt::kPictCodec, picture)), RgbaOf(DecodeWhole(qt::kPngCodec, source))),
        0);
}

TEST(PictCodec, FrameAndResolution) {
    const MadeImages images;
    const Bytes file =
        images.MakeBytes("-size 30x20 xc:red -units PixelsPerInch -density 300x150", "dpi.pict");
    Bytes bare(file.begin() + 512, file.end());
    Bytes repeated = bare; // as container streams are handed over: the picture, once more in front of itself
    repeated.resize(512);
    repeated.insert(repeated.end(), bare.begin(), bare.end());
    Bytes scaled = bare; // a frame in 72 to the inch; the size in pixels stands in the header
    scaled[7] = std::byte{10};
    scaled[9] = std::byte{7};
    for (const Bytes& bytes : {file, bare, repeated, scaled}) {
        const qt::ImageFacts facts = FactsOf(qt::kPictCodec, bytes);
        EXPECT_EQ(facts.description.width, 30);
        EXPECT_EQ(facts.description.height, 20);
        EXPECT_EQ(ResolutionOf(qt::kPictCodec, bytes), std::pair(300, 150));
        EXPECT_EQ(facts.data_offset, bytes.size() > bare.size() ? 512U : 0U);
        EXPECT_EQ(DecodeWhole(qt::kPictCodec, bytes).Row(19)[29], 0xFFFF0000);
    }
}

/// A direct map of one row of four pixels in one packing: red, green, blue, black.
Bytes FourPixels(int row_bytes, int pack_type, int pixel_size, int components,
                 std::initializer_list<int> stored) {
    MadePicture picture(4, 1);
    picture.Operation(0x9A).Long(0xFF).Word(0x8000 | row_bytes).Map(4, 1, pack_type, pixel_size, components);
    return picture.Frame(0, 0, 1, 4).Frame(0, 0, 1, 4).Word(0).ByteRun(stored).End();
}

TEST(PictPixels, EveryPacking) {
    EXPECT_EQ(Drawn(FourPixels(16, 1, 32, 3, {0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0})),
              "rgb#\n");
    EXPECT_EQ(Drawn(FourPixels(16, 2, 32, 3, {255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0})), "rgb#\n");
    EXPECT_EQ(Drawn(FourPixels(8, 1, 16, 3, {0x7C, 0, 3, 0xE0, 0, 0x1F, 0, 0})), "rgb#\n");
    EXPECT_EQ(Drawn(FourPixels(8, 3, 16, 3, {9, 3, 0x7C, 0, 3, 0xE0, 0, 0x1F, 0, 0})), "rgb#\n");
    EXPECT_EQ(Drawn(FourPixels(8, 3, 16, 3, {3, 0xFD, 0x7C, 0})), "rrrr\n"); // a run of words
    const auto planes = {13, 11, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0};
    EXPECT_EQ(Drawn(FourPixels(16, 4, 32, 3, planes)), "rgb#\n");
    EXPECT_EQ(Drawn(FourPixels(16, 0, 32, 3, planes)), "rgb#\n");
    // Rows that are longer than the picture is wide.
    const auto padded = {16, 14, 255, 0, 0, 0, 9, 0, 255, 0, 0, 9, 0, 0, 255, 0, 9};
    EXPECT_EQ(Drawn(FourPixels(20, 4, 32, 3, padded)), "rgb#\n");
    const auto alphas = {17, 15, 255, 128, 0, 255, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0};
    const auto image = DecodeWhole(qt::kPictCodec, FourPixels(16, 4, 32, 4, alphas));
    EXPECT_TRUE(image.has_alpha);
    EXPECT_EQ(image.Row(0)[1], 0x8000FF00);
    const auto unused = {15, 0xFD, 0, 11, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0};
    EXPECT_EQ(Drawn(FourPixels(16, 4, 32, 4, unused)), "rgb#\n"); // no alpha in the fourth component
}

TEST(PictPixels, BitmapsTakeColoursModesMasksAndSizes) {
    const auto with = [](int mode, bool masked) {
        MadePicture picture(6, 2);
        picture.Operation(0x1A).Words({0xFFFF, 0, 0}).Operation(0x1B).Words({0, 0, 0xFFFF});
        picture.Operation(0x31).Frame(0, 0, 1, 6); // red above white
        picture.Operation(masked ? 0x91 : 0x90).Word(2).Frame(0, 0, 2, 3).Frame(0, 0, 2, 3);
        picture.Frame(0, 0, 2, 6).Word(mode);
        if (masked) picture.Word(10).Frame(0, 1, 2, 3);
        return Drawn(picture.ByteRun({0xA0, 0, 0x40, 0}).End());
    };
    EXPECT_EQ(with(0, false), "rrbbrr\nbbrrbb\n");
    EXPECT_EQ(with(1, false), "rrrrrr\n..rr..\n");
    EXPECT_EQ(with(3, false), "bbrrbb\n..bb..\n");
    EXPECT_EQ(with(4, false), "bbrrbb\nrrbbrr\n");
    EXPECT_EQ(with(2, false), "??rr??\n..##..\n"); // red inverted is cyan
    EXPECT_EQ(with(0, true), "rrbrrr\n.br...\n");
}

TEST(PictPixels, IndexedMapsOfEveryDepth) {
    const auto with = [](int bits, int row_bytes, std::initializer_list<int> stored) {
        MadePicture picture(4, 1);
        picture.Operation(0x98).Word(0x8000 | row_bytes).Map(4, 1, 0, bits, 1);
        picture.Words(
            {0, 0, 0, 2, 0, 0xFFFF, 0, 0, 1, 0, 0xFFFF, 0, 3, 0, 0, 0xFFFF}); // red, green, blue at 3
        return Drawn(picture.Frame(0, 0, 1, 4).Frame(0, 0, 1, 4).Word(0).ByteRun(stored).End());
    };
    EXPECT_EQ(with(1, 2, {0x50, 0}), "rgrg\n");
    EXPECT_EQ(with(2, 2, {0x1F, 0}), "rgbb\n");
    EXPECT_EQ(with(4, 2, {0x01, 0x31}), "rgbg\n");
    EXPECT_EQ(with(8, 8, {4, 0xFD, 3, 0xFD, 0}), "bbbb\n"); // a run goes on behind what is shown
    EXPECT_EQ(with(8, 4, {0, 1, 3, 0}), "rgbr\n");
}

TEST(PictQuickTime, EmbeddedImages) {
    const MadeImages images;
    const Bytes jpeg = images.MakeBytes("-size 8x8 xc:black -colorspace Gray", "black.jpg");
    const auto with = [](long type, int depth, int width, const Bytes& data) {
        MadePicture picture(12, 8);
        const long size = 68 + 86 + static_cast<long>(data.size());
        picture.Operation(0x8200).Long(size).Word(0);
        picture.Long(0x8000).Long(0).Long(0).Long(0).Long(0x8000).Long(0); // half the size,
        picture.Long(0x2'0000).Long(0x1'0000).Long(0x4000'0000);           // two to the right, one down
        picture.Long(0).Frame(0, 0, 0, 0).Word(0).Frame(0, 0, 8, width).Long(0).Long(0);
        picture.Long(86).Long(type).Long(0).Long(0).Long(0).Long(0).Long(0).Long(0);
        picture.Words({width, 8}).Long(72 << 16).Long(72 << 16).Long(static_cast<long>(data.size())).Word(1);
        picture.Append(Bytes(32)).Words({depth, -1}).Append(data);
        picture.Operation(0x28).Words({7, 0}).Byte(24);
        for (const char c : std::string("QuickTime and a JPEG dec")) picture.Byte(c);
        return picture.End();
    };
    const std::string empty = "............\n";
    const std::string black = "..####......\n";
    const std::string expected = empty + black + black + black + black + empty + empty + empty;
    EXPECT_EQ(Drawn(with(qt::Code("jpeg"), 24, 8, jpeg)), expected);
    EXPECT_EQ(Drawn(with(qt::Code("raw "), 24, 8, Bytes(std::size_t{3} * 64))), expected);
    // A picture inside is not followed: the words in its place show.
    EXPECT_NE(Drawn(with(qt::Code("qdrw"), 24, 8, MadePicture(8, 8).End())).find('#'), std::string::npos);

    MadePicture plain(4, 1);
    plain.Operation(0x8201).Long(50 + 2 + 28 + 2).Append(Bytes(50));
    plain.Word(0x90).Word(2).Frame(0, 0, 1, 4).Frame(0, 0, 1, 4).Frame(0, 0, 1, 4).Word(0).ByteRun({0x60, 0});
    EXPECT_EQ(Drawn(plain.End()), ".##.\n");
}

TEST(PictCodec, SurvivesDamageToDrawings) {
    MadePicture drawing(60, 60);
    drawing.Operation(0x01).Word(10).Frame(0, 0, 60, 60).Operation(0x07).Words({3, 2});
    for (int verb = 0; verb < 5; ++verb) {
        drawing.Operation(0x30 + verb).Frame(1, 1, 40, 30).Operation(0x40 + verb).Frame(5, 1, 40, 30);
        drawing.Operation(0x50 + verb).Frame(1, 1, 40, 30);
        drawing.Operation(0x60 + verb).Frame(5, 1, 40, 30).Words({30, 70});
        drawing.Operation(0x70 + verb).Words({22, 0, 0, 50, 50, 0, 0, 50, 10, 20, 50});
        drawing.Operation(0x80 + verb).Words({28, 0, 0, 4, 5, 0, 0, 5, 0x7FFF, 4, 0, 5, 0x7FFF, 0x7FFF});
    }
    drawing.Operation(0x20).Words({1, 2, 30, 40}).Operation(0x28).Words({20, 1}).ByteRun({3, 'a', 'b', 'c'});
    ExpectDamageIsSurvived(qt::kPictCodec, drawing.End(), 2000);
}

/// What is written is read alike by ImageMagick and here.
Bytes ReadByBoth(const MadeImages& images, const Bytes& written) {
    Bytes ours = RgbaOf(DecodeWhole(qt::kPictCodec, written));
    EXPECT_EQ(Difference(Opaque(ours), MagickReads(images, written, "written.pict")), 0);
    return ours;
}

std::string OfWidth(int width) {
    return "-size 90x30 plasma: -resize '" + std::to_string(width) + "x30!' -depth 8";
}

TEST(PictExporter, WritesEveryWidthExactly) {
    const MadeImages images;
    for (const int width : {1, 2, 3, 8, 51, 62, 66, 83, 126, 225, 251, 4093}) {
        for (const char* alpha : {"", kSeenThrough}) {
            if (*alpha != '\0' && width > 100) continue; // it takes the tool seconds
            SCOPED_TRACE(std::to_string(width) + alpha);
            const auto image = MadeImage(images, OfWidth(width) + alpha);
            const Bytes written = Written(kPict, image);
            EXPECT_EQ(Difference(ReadByBoth(images, written), RgbaOf(image)), 0);
            EXPECT_EQ(FactsOf(qt::kPictCodec, written).description.depth, *alpha != '\0' ? 32 : 24);
        }
    }
}

TEST(PictExporter, WritesEveryDepth) {
    const MadeImages images;
    for (const int width : {5, 225, 2500}) {
        const auto image = MadeImage(images, OfWidth(width) + " -type TrueColor");
        for (const int depth : {1, 2, 4, 8, 33, 34, 36, 40}) {
            SCOPED_TRACE(depth);
            const Bytes written = Written(kPict, image, AtDepth(depth));
            EXPECT_EQ(FactsOf(qt::kPictCodec, written).description.depth, depth % 32);
            ReadByBoth(images, written);
        }
        // Sixteen bits are dithered: no channel is further off than a step.
        const Bytes sixteen = RgbaOf(DecodeWhole(qt::kPictCodec, Written(kPict, image, AtDepth(16))));
        EXPECT_LE(Difference(sixteen, RgbaOf(image)), 9);
    }
}

TEST(PictExporter, Header) {
    const Bytes written = Written(kPict, MakeImage(3, 2, 0xFF00FF00), AtResolution(300, 150));
    EXPECT_EQ(Prefix(written, 512), Bytes(512));
    EXPECT_EQ(qt::BigEndian16(&written[512]), written.size() - 512);
    EXPECT_EQ(ResolutionOf(qt::kPictCodec, written), std::pair(300, 150));
}

} // namespace
