#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_exporters/exporter.h"
#include "tests/quicktime/codecs/written_images.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio> // before jpeglib.h
#include <cstdlib>

#include <jpeglib.h>

namespace {

using namespace corvane::test;

constexpr Sample kSamples[] = {
    {"-size 67x41 plasma: -quality 90", "rgb.jpg", 24},
    {"-size 67x41 plasma: -sampling-factor 2x2 -quality 60", "sampled.jpg", 24},
    {"-size 67x41 plasma: -interlace JPEG", "progressive.jpg", 24},
    {"-size 67x41 plasma: -colorspace Gray", "grey.jpg", 40},
    {"-size 67x41 plasma: -define jpeg:restart-interval=1", "restart.jpg", 24},
    {"-size 1x1 xc:red", "one.jpg", 24},
    {"-size 67x41 plasma: -colorspace CMYK", "cmyk.jpg", 32, 2},
};

TEST(JpegCodec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kJpegCodec, kSamples, "-colorspace sRGB");
}

/// As printing programs write it: four inks, three of them as brightness and differences, 255 for none.
Bytes InksAsDifferences(const std::vector<JSAMPLE>& inks, int width, int height) {
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* written = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &written, &size);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_CMYK;
    jpeg_set_defaults(&jpeg);
    jpeg_set_colorspace(&jpeg, JCS_YCCK);
    jpeg_set_quality(&jpeg, 100, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < jpeg.image_height) {
        auto* row = const_cast<JSAMPLE*>(&inks[std::size_t{jpeg.next_scanline} * jpeg.image_width * 4]);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    const auto* first = reinterpret_cast<const std::byte*>(written);
    Bytes bytes(first, first + size);
    std::free(written);
    return bytes;
}

TEST(JpegCodec, ReadsInksThatAreStoredAsDifferences) {
    const MadeImages images;
    std::vector<JSAMPLE> inks;
    for (int i = 0; i < 32 * 16; ++i) {
        for (const int ink : {i % 32 * 8, i / 32 * 15, 200, 255 - i % 32 * 3})
            inks.push_back(static_cast<JSAMPLE>(ink));
    }
    const Bytes bytes = InksAsDifferences(inks, 32, 16);
    EXPECT_EQ(FactsOf(qt::kJpegCodec, bytes).description.depth, 32);
    const Bytes read = RgbaOf(DecodeWhole(qt::kJpegCodec, bytes));
    images.folder.MakeFile("inks.jpg", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    EXPECT_LE(Difference(read, MagickRgba(images, images.folder.Path("inks.jpg"), "-colorspace sRGB")), 2);
}

TEST(JpegCodec, GivesTheRowsOfDataThatBreaksOff) {
    const MadeImages images;
    const Bytes whole = images.MakeBytes("-size 200x200 plasma:red-blue -quality 95", "a.jpg");
    const qt::PixelImage complete = DecodeWhole(qt::kJpegCodec, whole);
    const qt::PixelImage image = DecodeWhole(qt::kJpegCodec, Prefix(whole, whole.size() / 2));
    EXPECT_EQ(image.Row(20)[100], complete.Row(20)[100]);
    EXPECT_NE(complete.Row(199)[100], qt::Pixel(255, 255, 255));
    EXPECT_EQ(image.Row(199)[100], qt::Pixel(255, 255, 255));

    const Bytes without_end = Prefix(whole, whole.size() - 2);
    EXPECT_EQ(RgbaOf(DecodeWhole(qt::kJpegCodec, without_end)), RgbaOf(complete));

    const Bytes progressive = images.MakeBytes("-size 200x200 plasma:red-blue -interlace JPEG", "p.jpg");
    const Bytes coarse = Prefix(progressive, progressive.size() - progressive.size() / 3);
    EXPECT_NE(DecodeWhole(qt::kJpegCodec, coarse).Row(199)[100], qt::Pixel(255, 255, 255))
        << "later scans only refine";
}

TEST(JpegCodec, ReadsItsTextItems) {
    using namespace std::string_literals;
    const MadeImages images;
    const Bytes plain = images.MakeBytes("-size 8x8 xc:red", "a.jpg");
    const auto texts_with = [&](unsigned char marker, const std::string& content) {
        return TextsOf(qt::kJpegCodec, WithSegment(plain, marker, content));
    };
    EXPECT_EQ(TextsOf(qt::kJpegCodec, plain), Texts());
    EXPECT_EQ(texts_with(0xFE, "gr\xC3\xB6\xC3\x9F"), (Texts{{"cmt", "gr\xF6\xDF"}}));

    const std::string iptc = "\x1C\x02\x05\0\3One\x1C\x02\x19\0\1a\x1C\x02\x19\0\1b"s;
    const std::string resources =
        "Photoshop 3.0\0008BIM\4\4\0\0\0\0\0"s + static_cast<char>(iptc.size()) + iptc;
    EXPECT_EQ(texts_with(0xED, resources), (Texts{{"nam", "One"}, {"key", "a"}, {"key", "b"}}));
    EXPECT_EQ(texts_with(0xED, resources.substr(0, 30)), Texts());

    const std::string xmp =
        "http://ns.adobe.com/xap/1.0/\0<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\""
        "http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" xmlns:dc=\""
        "http://purl.org/dc/elements/1.1/\"><dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">Two</rdf:li>"
        "</rdf:Alt></dc:title><dc:creator><rdf:Seq><rdf:li>Ann</rdf:li></rdf:Seq></dc:creator>"
        "</rdf:Description></rdf:RDF></x:xmpmeta>"s;
    EXPECT_EQ(texts_with(0xE1, xmp), (Texts{{"nam", "Two"}, {"aut", "Ann"}}));
    const Bytes both = WithSegment(WithSegment(plain, 0xE1, xmp), 0xED, resources);
    EXPECT_EQ(TextsOf(qt::kJpegCodec, both),
              (Texts{{"nam", "One"}, {"key", "a"}, {"key", "b"}, {"aut", "Ann"}}))
        << "what the older record says stands";
    EXPECT_EQ(texts_with(0xE1, xmp.substr(0, 200)), Texts());

    Bytes commented = plain;
    const Bytes comment = BytesOf("\xFF\xFE" + std::string("\0\3c", 3));
    Bytes comments;
    for (int i = 0; i < 40'000; ++i) comments.insert(comments.end(), comment.begin(), comment.end());
    commented.insert(commented.begin() + 2, comments.begin(), comments.end());
    EXPECT_EQ(TextsOf(qt::kJpegCodec, commented).size(), 32'767U);
}

TEST(XmpPackets, WithPropertiesWithoutNumberAreSkipped) {
    const auto items_with = [](int others, const std::string& member) {
        std::string packet =
            "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\""
            "http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" xmlns:dc=\""
            "http://purl.org/dc/elements/1.1/\" xmlns:a=\"http://a/\"";
        for (int i = 0; i < others; ++i) packet += " a:k" + std::to_string(i) + "=\"\"";
        packet += "><dc:subject><rdf:Bag>" + member + "</rdf:Bag></dc:subject></rdf:Description></rdf:RDF>";
        std::vector<qt::MetadataItem> items;
        qt::AppendXmpItems(packet + "</x:xmpmeta>", items);
        return items.size();
    };
    std::string members;
    for (int i = 0; i < 20'000; ++i) members += "<rdf:li>x</rdf:li>";
    EXPECT_EQ(items_with(1000, members), 20'000U) << "members of lists are no properties";
    EXPECT_EQ(items_with(10'000, "<rdf:li>x</rdf:li>"), 0U);
}

TEST(JpegExporter, FollowsQualityDepthAndMethod) {
    const MadeImages images;
    const qt::PixelImage image = MadeImage(images, "-size 300x200 -seed 7 plasma:red-blue");
    const Bytes original = RgbaOf(image);
    std::size_t smaller = 0;
    for (const auto& [quality, least] : {std::pair(100, 22.0), {512, 30.0}, {900, 32.0}, {1024, 42.0}}) {
        SCOPED_TRACE(quality);
        qt::ExportSettings settings = AtResolution(300, 150);
        settings.quality = quality;
        const Bytes bytes = Written(qt::Code("JPEG"), image, settings);
        EXPECT_GT(Psnr(MagickReads(images, bytes, "out.jpg"), original), least);
        EXPECT_GT(bytes.size(), smaller);
        smaller = bytes.size();
        EXPECT_NEAR(FactsOf(qt::kJpegCodec, bytes).description.spatialQuality, std::min(quality, 1023), 30);
        EXPECT_EQ(ResolutionOf(qt::kJpegCodec, bytes), std::pair(300, 150));
    }
    const Bytes grey = Written(qt::Code("JPEG"), image, AtDepth(40));
    EXPECT_EQ(FactsOf(qt::kJpegCodec, grey).description.depth, 40);
    const Bytes bytes = Written(qt::Code("JPEG"), image, {{}, {}, {}, {}, {}, 1});
    const Bytes frame = BytesOf({0xFF, 0xC2}); // progressive
    EXPECT_NE(std::search(bytes.begin(), bytes.end(), frame.begin(), frame.end()), bytes.end());
    EXPECT_EQ(MagickReads(images, bytes, "out.jpg"),
              MagickReads(images, Written(qt::Code("JPEG"), image), "out.jpg"));
    const Bytes transparent = Written(qt::Code("JPEG"), MakeImage(32, 32, 0U));
    EXPECT_EQ(DecodeWhole(qt::kJpegCodec, transparent).Row(5)[5], 0xFFFFFFFF) << "in front of white";
}

TEST(JpegExporter, FindsTheBestQualityThatFits) {
    const MadeImages images;
    const qt::PixelImage image = MadeImage(images, "-size 300x200 -seed 7 plasma:red-blue");
    const auto written = [&](std::optional<std::uint32_t> target, int quality) {
        return Written(qt::Code("JPEG"), image, {{}, {}, {}, quality, target, {}});
    };
    for (const std::uint32_t target : {3'000U, 8'000U, 20'000U}) {
        const Bytes bytes = written(target, 1); // whose quality is not looked at
        EXPECT_LE(bytes.size(), target);
        EXPECT_GT(bytes.size(), target * 7 / 10);
    }
    EXPECT_EQ(written(10, 1), written({}, 0)) << "nothing fits";
}

TEST(JpegExporter, PassesCompressedDataOn) {
    const MadeImages images;
    const Bytes jpeg =
        images.MakeBytes("-size 120x80 plasma: -density 72 -units PixelsPerInch -set comment kept", "a.jpg");
    const ImageDescription description = FactsOf(qt::kJpegCodec, jpeg).description;
    const auto transcode = [&](const qt::ExportSettings& settings, Bytes& out) {
        return qt::FindImageExporter(qt::Code("JPEG"))
            ->transcode(*qt::MemorySource(std::span(jpeg)), description, settings, out);
    };
    Bytes out;
    EXPECT_TRUE(transcode(AtResolution(72, 72), out));
    EXPECT_EQ(out, jpeg);
    out.clear();
    qt::ExportSettings changed = AtResolution(300, 150);
    changed.compression_method = 1;
    ASSERT_TRUE(transcode(changed, out));
    EXPECT_NE(out, jpeg);
    EXPECT_EQ(ResolutionOf(qt::kJpegCodec, out), std::pair(300, 150));
    EXPECT_EQ(RgbaOf(DecodeWhole(qt::kJpegCodec, out)), RgbaOf(DecodeWhole(qt::kJpegCodec, jpeg)));
    EXPECT_EQ(TextsOf(qt::kJpegCodec, out), (Texts{{"cmt", "kept"}}));
    out.clear();
    EXPECT_FALSE(transcode(AtDepth(40), out));
    EXPECT_FALSE(transcode({{}, {}, {}, {}, 100, {}}, out)) << "too large";
    EXPECT_EQ(out, Bytes());
}

/// An EXIF block, low byte first, that states 72 dots per inch, or a ratio of no unit.
std::string Exif(char unit) {
    using namespace std::string_literals;
    const std::string block = "Exif\0\0II*\0\x08\0\0\0\3\0"s + "\x1A\1\5\0\1\0\0\0\x32\0\0\0"s +
                              "\x1B\1\5\0\1\0\0\0\x3A\0\0\0"s + "\x28\1\3\0\1\0\0\0"s + unit + "\0\0\0"s +
                              "\0\0\0\0"s;
    const std::string value = "\xD0\2\0\0\x0A\0\0\0"s; // 720 / 10
    return block + value + value;
}

TEST(JpegExporter, StatesAnotherResolutionInTheDataAsItIs) {
    using namespace std::string_literals;
    constexpr std::ptrdiff_t kJfif = 18;
    const MadeImages images;
    const Bytes plain = images.MakeBytes("-size 60x40 plasma: -interlace JPEG -density 72", "a.jpg");
    Bytes bare = plain;
    bare.erase(bare.begin() + 2, bare.begin() + 2 + kJfif);
    const auto restated = [](const Bytes& jpeg) {
        Bytes out;
        EXPECT_TRUE(
            qt::kJpegExporter.transcode(*qt::MemorySource(std::span(jpeg)), {}, AtResolution(300, 150), out));
        EXPECT_EQ(ResolutionOf(qt::kJpegCodec, out), std::pair(300, 150));
        return out;
    };
    const std::string there = Exif('\2').substr(0, 56) + "\x2C\1\0\0\1\0\0\0\x96\0\0\0\1\0\0\0"s;
    for (const char unit : {'\1', '\2', '\3'}) {
        EXPECT_EQ(restated(WithSegment(bare, 0xE1, Exif(unit))), WithSegment(bare, 0xE1, there));
        EXPECT_EQ(restated(WithSegment(plain, 0xE1, Exif(unit))), WithSegment(restated(plain), 0xE1, there));
    }
    const auto resource = [](const std::string& horizontal, const std::string& vertical) {
        const std::string units = "\0\0\0\1\0\1"s;
        return "Photoshop 3.0\0008BIM\3\xED\0\0\0\0\0\x10"s + horizontal + units + vertical + units;
    };
    const Bytes added = restated(WithSegment(bare, 0xED, resource("\0\x48"s, "\0\x48"s)));
    const Bytes expected = WithSegment(bare, 0xED, resource("\1\x2C"s, "\0\x96"s));
    EXPECT_EQ(added, WithSegment(expected, 0xE0, "JFIF\0\1\1\1\1\x2C\0\x96\0\0"s));

    Bytes out;
    const Bytes exif_first = WithSegment(plain, 0xE1, Exif('\2'));
    qt::ExportSettings sequential;
    sequential.compression_method = 0;
    ASSERT_TRUE(qt::kJpegExporter.transcode(*qt::MemorySource(std::span(exif_first)), {}, sequential, out));
    EXPECT_EQ(Prefix(out, 90), Prefix(exif_first, 90)) << "readers look for EXIF in front";
    EXPECT_NE(out, exif_first);
    out.clear();
    const Bytes rgb = WithSegment(bare, 0xEE, "Adobe\0\x64\0\0\0\0\0"s);
    EXPECT_TRUE(
        qt::kJpegExporter.transcode(*qt::MemorySource(std::span(rgb)), {}, AtResolution(300, 150), out));
    EXPECT_EQ(out, rgb) << "the header would make other colours of it";
}

} // namespace
