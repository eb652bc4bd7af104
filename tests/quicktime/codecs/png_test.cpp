#include "platform/quicktime/image_exporters/exporter.h"
#include "tests/quicktime/codecs/written_images.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace corvane::test;

constexpr Sample kSamples[] = {
    {"-size 67x41 plasma:", "png24:rgb.png", 24},
    {"-size 64x41 plasma: -define png:compression-filter=0", "png24:none.png", 24},
    {"-size 65x41 plasma: -define png:compression-filter=1", "png24:sub.png", 24},
    {"-size 66x41 plasma: -define png:compression-filter=2", "png24:up.png", 24},
    {"-size 67x41 plasma: -define png:compression-filter=3", "png24:average.png", 24},
    {"-size 300x200 plasma: -define png:compression-filter=4", "png24:paeth.png", 24},
    {"-size 63x41 plasma: -define png:compression-filter=4", "png24:narrow.png", 24},
    {"-size 67x41 plasma:", "png48:deep.png", 24},
    {"-size 67x41 plasma: -alpha set -channel A -fx u.r", "png32:rgba.png", 32},
    {"-size 67x41 plasma: -alpha set -channel A -fx u.r", "png64:deepa.png", 32},
    {"-size 67x41 plasma: -interlace PNG", "png24:adam7.png", 24},
    {"-size 67x41 plasma: -colors 200", "png8:p8.png", 8},
    {"-size 67x41 plasma: -colors 200 -transparent '#000000' -fill none -draw 'rectangle 3,3 20,20'",
     "png8:p8t.png", 8},
    {"-size 67x41 plasma: -colors 13 -define png:color-type=3 -define png:bit-depth=4", "p4.png", 4},
    {"-size 67x41 plasma: -colors 3 -define png:color-type=3 -define png:bit-depth=2 -interlace PNG",
     "p2.png", 2},
    {"-size 67x41 gradient: -define png:color-type=0 -define png:bit-depth=8", "g8.png", 40},
    {"-size 67x41 gradient: -define png:color-type=0 -define png:bit-depth=16", "g16.png", 40},
    {"-size 67x41 gradient: -posterize 4 -define png:color-type=0 -define png:bit-depth=2", "g2.png", 34},
    {"-size 67x41 gradient: -posterize 16 -define png:color-type=0 -define png:bit-depth=4", "g4.png", 36},
    {"-size 67x41 pattern:gray50 -define png:color-type=0 -define png:bit-depth=1", "g1.png", 1},
    {"-size 67x41 gradient: -alpha set -channel A -evaluate set 40% -define png:color-type=4", "ga.png", 32},
    {"-size 1x1 xc:red", "png24:one.png", 24},
};

TEST(PngCodec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kPngCodec, kSamples, "", 100);
}

TEST(PngCodec, GivesTheRowsOfDataThatBreaksOff) {
    const MadeImages images;
    for (const char* interlace : {"None", "PNG"}) {
        SCOPED_TRACE(interlace);
        const Bytes whole = images.MakeBytes(
            std::string("-size 200x200 plasma:red-blue -interlace ") + interlace, "png24:a.png");
        const qt::PixelImage image = DecodeWhole(qt::kPngCodec, Prefix(whole, whole.size() / 2));
        EXPECT_EQ(image.Row(0)[0], DecodeWhole(qt::kPngCodec, whole).Row(0)[0]);
        const bool coarse = image.Row(199)[199] != qt::Pixel(255, 255, 255);
        EXPECT_EQ(coarse, interlace == std::string("PNG")) << "a first pass shows all of the image";
    }
}

TEST(PngCodec, ReadsItsTextItems) {
    const MadeImages images;
    const std::string comment(3000, 'x'); // is compressed
    const Bytes bytes =
        images.MakeBytes("-size 8x8 xc:red -set Title 'gr\xC3\xB6\xC3\x9F' -set Author Ann -set Other no "
                         "-set Comment " +
                             comment,
                         "png24:a.png");
    Texts texts = TextsOf(qt::kPngCodec, bytes);
    std::ranges::sort(texts);
    EXPECT_EQ(texts, (Texts{{"aut", "Ann"}, {"cmt", comment}, {"nam", "gr\xF6\xDF"}}));

    // International text, plain, compressed and breaking off, of which nothing comes.
    Bytes more = images.MakeBytes("-size 8x8 xc:red", "png24:b.png");
    const auto add = [&](std::string_view content) {
        std::string chunk{'\0', '\0', '\0', static_cast<char>(content.size())};
        chunk.append("iTXt").append(content).append(4, '\0');
        const Bytes added = BytesOf(chunk);
        more.insert(more.begin() + 33, added.begin(), added.end()); // behind the header
    };
    using namespace std::string_view_literals;
    add("Title\0\0\0de\0Titel\0gr\xC3\xB6\xC3\x9F"sv);
    add("Author\0\1\0\0\0\x78\x9C\x73\xCC\xCB\x03\x00\x02\x10\x01\x1E"sv);
    add("Comment\0\1\0\0\0\x78\x9C\x73"sv);
    add("Title\0"sv);
    EXPECT_EQ(TextsOf(qt::kPngCodec, more), (Texts{{"aut", "Ann"}, {"nam", "gr\xF6\xDF"}}));
}

TEST(PngCodec, TakesAMebibyteOfCompressedTexts) {
    const MadeImages images;
    Bytes bytes =
        images.MakeBytes("-size 8x8 xc:red -set Comment " + std::string(100'000, 'x'), "png24:a.png");
    constexpr std::size_t kLengthAndType = 8;
    constexpr std::size_t kChecksum = 4;
    const std::string_view all(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::size_t at = all.find("zTXt") - 4;
    const Bytes chunk(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                      bytes.begin() + static_cast<std::ptrdiff_t>(at + kLengthAndType + kChecksum +
                                                                  qt::BigEndian32(bytes.data() + at)));
    for (int i = 0; i < 20; ++i)
        bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(at), chunk.begin(), chunk.end());
    std::size_t size = 0;
    for (const auto& [type, text] : TextsOf(qt::kPngCodec, bytes)) size += text.size();
    EXPECT_EQ(size, 1U << 20);
}

TEST(PngExporter, KeepsEveryPixel) {
    const MadeImages images;
    struct Case {
        const char* arguments;
        int depth; ///< 0: the exporter's choice
        int written;
    };
    constexpr Case kCases[] = {
        {"-size 67x41 plasma:red-blue -type TrueColor", 0, 24},
        {"-size 67x41 plasma: -alpha set -channel A -fx u.r", 0, 32},
        {"-size 67x41 plasma:red-blue -type TrueColor", 32, 32},
        {"-size 67x41 gradient: -colorspace Gray", 40, 40},
        {"-size 67x41 plasma: -colors 200", 8, 8},
        {"-size 67x41 plasma: -colors 16", 4, 4},
        {"-size 67x41 plasma: -colors 4", 2, 2},
        {"-size 67x41 plasma: -colors 2", 1, 1},
        {"-size 67x41 xc:none -fill red -draw 'rectangle 3,3 20,20'", 4, 4},
        {"-size 3x3 xc:red", 24, 24},
    };
    for (const Case& sample : kCases) {
        for (const int method : {0, 1}) {
            SCOPED_TRACE(std::string(sample.arguments) + " " + std::to_string(method));
            const qt::PixelImage image = MadeImage(images, sample.arguments);
            qt::ExportSettings settings = AtResolution(300, 150);
            if (sample.depth != 0) settings.depth = sample.depth;
            settings.compression_method = method;
            const Bytes bytes = Written(qt::Code("PNGf"), image, settings);
            EXPECT_EQ(MagickReads(images, bytes, "out.png"), RgbaOf(image));
            EXPECT_EQ(bytes[28], std::byte(method)) << "the interlace method in the header";
            EXPECT_EQ(FactsOf(qt::kPngCodec, bytes).description.depth, sample.written);
            EXPECT_EQ(ResolutionOf(qt::kPngCodec, bytes), std::pair(300, 150));
        }
    }
}

TEST(PngExporter, CompressesPhotographsBetterThanOneFilterDoes) {
    const MadeImages images;
    const qt::PixelImage image = MadeImage(images, "-size 600x400 -seed 7 plasma:red-blue");
    const Bytes sub =
        images.MakeBytes("'" + images.folder.Path("source.png") +
                             "' -define png:compression-level=1 -define png:compression-filter=1",
                         "png24:sub.png");
    EXPECT_LT(Written(qt::Code("PNGf"), image).size(), sub.size());
}

} // namespace
