#include "platform/quicktime/movies/atoms.h"
#include "tests/quicktime/codecs/written_images.h"

#include <algorithm>
#include <tiffio.h>

namespace {

using namespace corvane::test;

constexpr OSType kPsd = qt::Code("8BPS");

constexpr Sample kSamples[] = {
    {"-size 67x41 plasma: -type TrueColor -depth 8", "rgb.psd", 24},
    {"-size 67x41 plasma: -type TrueColor -depth 8 -compress none", "plain.psd", 24},
    {"-size 67x41 plasma: -type TrueColor -depth 8 -compress rle", "packed.psd", 24},
    {"-size 67x41 plasma: -type TrueColor -depth 16", "deep.psd", 24},
    {"-size 67x41 plasma: -type TrueColor -define quantum:format=floating-point -depth 32", "float.psd", 24,
     1},
    {"-size 67x41 plasma: -type TrueColor -depth 8", "psb:large.psb", 24},
    {"-size 67x41 plasma: -colorspace Gray -type Grayscale -depth 8 -compress rle", "grey.psd", 40},
    {"-size 67x41 pattern:gray50 -type Bilevel -monochrome", "mono.psd", 40},
    {"-size 67x41 plasma: -colorspace CMYK -depth 8 -compress rle", "cmyk.psd", 32, 1},
};

TEST(PsdCodec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kPhotoshopCodec, kSamples, "-delete 1 -colorspace sRGB"); // without the layer
}

/// How the samples of a made document are stored.
struct Storage {
    int height = 1;
    int depth = 8;
    int method = 0;
};

/// `layers` is the layer section.
Bytes MadeDocument(int mode, int channels, int width, const std::string& resources, const std::string& layers,
                   const std::string& samples, const Storage& storage = {}) {
    qt::AtomWriter writer;
    const auto put16 = [&](std::size_t value) { writer.Put16(static_cast<std::uint16_t>(value)); };
    writer.Put("8BPS");
    for (const int word : {1, 0, 0, 0, channels, 0, storage.height, 0, width, storage.depth, mode, 0, 0, 0})
        put16(static_cast<unsigned>(word));
    put16(resources.size());
    writer.Put(resources);
    put16(0);
    put16(layers.size());
    writer.Put(layers);
    put16(static_cast<unsigned>(storage.method));
    writer.Put(samples);
    return writer.Take();
}

/// The pixels of a document of one row.
Pixels Row(const Bytes& document) {
    return PixelsOf(DecodeWhole(qt::kPhotoshopCodec, document));
}

/// The only strip of a TIFF, as it is stored.
std::string StripOf(const std::string& path) {
    TIFF* tiff = TIFFOpen(path.c_str(), "r");
    std::string strip(static_cast<std::size_t>(TIFFRawStripSize(tiff, 0)), '\0');
    TIFFReadRawStrip(tiff, 0, strip.data(), static_cast<tmsize_t>(strip.size()));
    TIFFClose(tiff);
    return strip;
}

TEST(PsdCodec, DeflatedRowsAndTheirDifferences) {
    // Libtiff deflates one channel of big-endian samples, and takes differences, in the same way. Of
    // floating-point samples in its own order it stores the highest bytes first.
    const MadeImages images;
    struct Case {
        const char* arguments;
        int depth;
        const char* options; ///< of tiffcp
    };
    constexpr Case kCases[] = {
        {"-depth 8", 8, "-B -c zip:1"},
        {"-depth 8", 8, "-B -c zip:2"},
        {"-depth 16", 16, "-B -c zip:2"},
        {"-depth 32 -define quantum:format=floating-point", 32, "-L -c zip:3"},
    };
    for (const Case& made : kCases) {
        SCOPED_TRACE(std::string(made.arguments) + made.options);
        const std::string source =
            images.Make(std::string("-size 67x41 plasma: -colorspace Gray -compress LZW ") + made.arguments,
                        "source.tif");
        const std::string copy = images.CopyTiff(std::string("-r 41 ") + made.options, source);
        const int method = std::string(made.options).ends_with(":1") ? 2 : 3;
        const Bytes whole = MadeDocument(1, 1, 67, "", "", StripOf(copy), {41, made.depth, method});
        const Bytes expected = RgbaOf(DecodeWhole(qt::kTiffCodec, FileBytes(source)));
        EXPECT_EQ(Difference(RgbaOf(DecodeWhole(qt::kPhotoshopCodec, whole)), expected), 0);
        ExpectDamageIsSurvived(qt::kPhotoshopCodec, whole);
        const auto cut = DecodeWhole(qt::kPhotoshopCodec, Prefix(whole, whole.size() / 2));
        EXPECT_EQ(qt::Red(cut.Row(9)[66]), std::to_integer<unsigned>(expected[std::size_t{9 * 67 + 66} * 4]));
        EXPECT_EQ(cut.Row(40)[0], 0xFFFFFFFF);
    }
}

TEST(PsdCodec, ExtraChannelsAreTransparencyOnlyWhenTheySaySo) {
    using namespace std::string_literals;
    const std::string layers = "\0\0\0\2\xFF\xFF"s; // minus one
    const auto selection = "8BIM\x03\xEE\0\0\0\0\0\x08\7Alpha 1"s;
    const auto pixel = [](const std::string& resources, const std::string& section) {
        return Row(MadeDocument(3, 4, 1, resources, section, "\xFF\x80\x40\x20")).at(0);
    };
    EXPECT_EQ(pixel("", ""), 0x20FF8040);
    EXPECT_EQ(pixel(selection, ""), 0xFFFF8040);
    EXPECT_EQ(pixel(selection, layers), 0x20FF8040);
    EXPECT_EQ(pixel("", "\0\0\0\2\0\1"s), 0xFFFF8040);
}

TEST(PsdCodec, ColoursInFrontOfWhiteAreTakenFromIt) {
    // Half of black, half of red; then a document that stores black itself.
    EXPECT_EQ(Row(MadeDocument(3, 4, 2, "", "", "\x7F\xFF\x7F\x7F\x7F\x7F\x80\x80")),
              (Pixels{0x80000000, 0x80FF0000}));
    const std::string straight = std::string("\0\xFF\0\x7F\0\x7F", 6) + "\x80\x80";
    EXPECT_EQ(Row(MadeDocument(3, 4, 2, "", "", straight)), (Pixels{0x80000000, 0x80FF7F7F}));
}

TEST(PsdCodec, LabAndDuotone) {
    const Pixels lab = Row(MadeDocument(9, 3, 2, "", "", "\xFF\x88\x80\xD0\x80\xC3"));
    EXPECT_EQ(lab[0], 0xFFFFFFFF);
    EXPECT_NEAR(qt::Red(lab[1]), 252, 3); // L 53, a 80, b 67: red
    EXPECT_LE(qt::Green(lab[1]), 20U);
    EXPECT_LE(qt::Blue(lab[1]), 20U);
    EXPECT_EQ(Row(MadeDocument(8, 1, 2, "", "", "\x10\x20"))[1], 0xFF202020);
}

/// As ffmpeg decodes it, which knows palettes.
Bytes FfmpegReads(const MadeImages& images, const Bytes& bytes) {
    const std::string in = images.folder.Path("in.psd");
    const std::string out = images.folder.Path("out.rgba");
    std::ofstream(in, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    const std::string command = "/usr/bin/ffmpeg -v error -y -i " + in + " -pix_fmt rgba -f rawvideo " + out;
    EXPECT_EQ(std::system(command.c_str()), 0);
    return FileBytes(out);
}

TEST(PsdExporter, IsReadByOthers) {
    const MadeImages images;
    const auto image = MadeImage(images, "-size 301x57 plasma: -type TrueColor");
    for (const int depth : {24, 1, 2, 4, 8, 33, 34, 36, 40}) {
        SCOPED_TRACE(depth);
        const Bytes written = Written(kPsd, image, AtDepth(depth));
        const Bytes ours = RgbaOf(DecodeWhole(qt::kPhotoshopCodec, written));
        const bool indexed = depth == 2 || depth == 4 || depth == 8;
        const Bytes theirs =
            indexed ? FfmpegReads(images, written) : MagickReads(images, written, "written.psd");
        EXPECT_EQ(Difference(ours, theirs), 0);
        EXPECT_TRUE(depth != 24 || Difference(ours, RgbaOf(image)) == 0);
    }
    EXPECT_EQ(FactsOf(qt::kPhotoshopCodec, Written(kPsd, image, AtDepth(33))).description.depth, 1);
    EXPECT_EQ(FactsOf(qt::kPhotoshopCodec, Written(kPsd, image, AtDepth(36))).description.depth, 40);
    const Bytes resolved = Written(kPsd, image, AtResolution(300, 150));
    EXPECT_EQ(ResolutionOf(qt::kPhotoshopCodec, resolved), std::pair(300, 150));
}

TEST(PsdExporter, Transparency) {
    const MadeImages images;
    const auto image =
        MadeImage(images, "-size 64x40 plasma: -alpha set -channel A -fx 'floor(i/16)/3' +channel");
    const Bytes written = Written(kPsd, image);
    const Bytes source = RgbaOf(image);
    const Bytes ours = RgbaOf(DecodeWhole(qt::kPhotoshopCodec, written));
    // In front of white a third of a colour keeps a third of its steps; the layer keeps all.
    EXPECT_LE(Difference(ours, source), 2);
    const std::string path = images.folder.Path("written.psd");
    EXPECT_EQ(MagickReads(images, written, "written.psd").size(), 2 * source.size());
    EXPECT_LE(Difference(MagickRgba(images, path + "[0]"), source), 2);
    EXPECT_EQ(Difference(MagickRgba(images, path + "[1]"), source), 0);
}

} // namespace
