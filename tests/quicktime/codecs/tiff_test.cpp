#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <tiffio.h>

namespace {

using namespace corvane::test;

constexpr Sample kSamples[] = {
    {"-size 67x41 plasma: -depth 8 -type TrueColor -compress None", "none.tif", 24},
    {"-size 67x41 plasma: -depth 8 -type TrueColor -compress LZW", "lzw.tif", 24},
    {"-size 67x41 plasma: -depth 8 -type TrueColor -compress Zip", "zip.tif", 24},
    {"-size 67x41 plasma: -depth 8 -type TrueColor -compress RLE", "packbits.tif", 24},
    {"-size 67x41 plasma: -depth 8 -type TrueColor -compress JPEG -quality 90", "jpeg.tif", 24, 2},
    {"-size 67x41 plasma: -depth 8 -colorspace Gray -compress JPEG -quality 90", "greyjpeg.tif", 40, 2},
    {"-size 67x41 plasma: -depth 16 -type TrueColor", "deep.tif", 24},
    {"-size 67x41 plasma: -depth 16 -endian MSB -type TrueColor", "big.tif", 24},
    {"-size 67x41 plasma: -depth 12 -type TrueColor", "twelve.tif", 24, 1},
    {"-size 67x41 plasma: -colors 200 -type Palette", "p8.tif", 8},
    {"-size 67x41 plasma: -colors 16 -type Palette -depth 4", "p4.tif", 4},
    {"-size 67x41 plasma: -colorspace Gray -depth 8", "g8.tif", 40},
    {"-size 67x41 plasma: -colorspace Gray -depth 4", "g4.tif", 36},
    {"-size 67x41 plasma: -colorspace Gray -depth 2", "g2.tif", 34},
    {"-size 67x41 plasma: -colorspace Gray -depth 16", "g16.tif", 40},
    {"-size 67x41 plasma: -colorspace Gray -depth 8 -define quantum:polarity=min-is-white", "inverted.tif",
     40},
    {"-size 67x41 pattern:gray50 -monochrome -compress Group4", "fax.tif", 1},
    {"-size 67x41 plasma: -depth 8 -alpha set -channel A -fx u.r", "rgba.tif", 32},
    {"-size 67x41 plasma: -depth 8 -alpha set -channel A -fx 'u.r*0.5+0.5' -define tiff:alpha=associated",
     "associated.tif", 32, 1},
    {"-size 67x41 plasma: -depth 8 -colorspace Gray -alpha set -channel A -fx u.r", "greyalpha.tif", 32},
    {"-size 67x41 plasma: -depth 8 -colorspace CMYK", "cmyk.tif", 32, 1},
    {"-size 67x41 plasma: -depth 8 -type TrueColor -define tiff:tile-geometry=32x16", "tiles.tif", 24},
    {"-size 67x41 plasma: -depth 8 -type TrueColor -interlace Plane", "planes.tif", 24},
    {"-size 67x41 plasma: -depth 8 -colorspace YCbCr -compress JPEG", "ycbcr.tif", 24, 3},
    {"-size 67x41 plasma: -depth 8 -colorspace YCbCr -compress LZW", "plainycbcr.tif", 24, 3},
    {"-size 67x41 plasma: -depth 8 -colorspace YCbCr -compress Zip -define tiff:tile-geometry=32x16",
     "ycbcrtiles.tif", 24, 3},
    {"-size 67x41 gradient:#604020-#90A0B0 -depth 8 -colorspace Lab -compress Zip", "lab.tif", 24, 3},
    {"-size 67x41 plasma: -depth 8 -colors 200 -type PaletteAlpha -alpha set -interlace Plane",
     "palettealpha.tif", 8},
    {"-size 1x1 xc:red -depth 8 -type TrueColor", "one.tif", 24},
};

TEST(TiffCodec, ReadsWhatImageMagickWritesEvenDamaged) {
    ExpectSamplesAreRead(qt::kTiffCodec, kSamples, "", 200);
}

TEST(TiffCodec, LayoutsOfLibtiff) {
    const MadeImages images;
    const std::string source =
        images.Make("-size 67x41 plasma: -depth 8 -type TrueColor -compress None", "source.tif");
    const Bytes expected = MagickRgba(images, source);
    for (const char* options :
         {"-s -r 1", "-s -r 41 -c none", "-t -w 16 -l 32 -c lzw:2", "-p separate -c zip:2",
          "-p separate -t -w 32 -l 32", "-B -c packbits", "-L -f lsb2msb", "-8"}) {
        SCOPED_TRACE(options);
        const std::string copy = images.CopyTiff(options, source);
        EXPECT_EQ(Difference(RgbaOf(DecodeWhole(qt::kTiffCodec, FileBytes(copy))), expected), 0);
        ExpectDamageIsSurvived(qt::kTiffCodec, FileBytes(copy), 60);
    }
}

/// The same file with a copy of the first bytes of its only strip at the end, as that strip.
Bytes WithCutStrip(Bytes bytes, std::size_t kept) {
    constexpr std::size_t kStripOffsets = 273;
    const bool is_big = bytes[0] == std::byte{'M'};
    const auto place = [&](std::size_t at, std::size_t size, std::size_t i) {
        return is_big ? at + size - 1 - i : at + i;
    };
    const auto number = [&](std::size_t at, std::size_t size) {
        std::size_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value |= std::to_integer<std::size_t>(bytes[place(at, size, i)]) << 8 * i;
        return value;
    };
    std::size_t entry = number(4, 4) + 2;
    while (number(entry, 2) != kStripOffsets) entry += 12;
    const std::size_t strip = number(entry + 8, 4);
    const std::size_t end = bytes.size();
    for (std::size_t i = 0; i < 4; ++i) bytes[place(entry + 8, 4, i)] = static_cast<std::byte>(end >> 8 * i);
    bytes.resize(end + kept);
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(strip), kept,
                bytes.begin() + static_cast<std::ptrdiff_t>(end));
    return bytes;
}

TEST(TiffCodec, GivesTheRowsOfAnOnlyStripThatBreaksOff) {
    constexpr std::size_t kRows = 20;
    const MadeImages images;
    for (const char* options : {"-L", "-B", "-L -f lsb2msb"}) {
        for (const std::size_t sample : {1U, 2U}) {
            SCOPED_TRACE(options + std::to_string(sample));
            const std::string source = images.Make(
                "-size 67x41 plasma: -type TrueColor -compress None -depth " + std::to_string(8 * sample),
                "source.tif");
            const std::string copy = images.CopyTiff(std::string("-r 41 ") + options, source);
            const Bytes whole = RgbaOf(DecodeWhole(qt::kTiffCodec, FileBytes(copy)));
            const Bytes cut = WithCutStrip(FileBytes(copy), (kRows * 67 + 5) * 3 * sample);
            const Bytes read = RgbaOf(DecodeWhole(qt::kTiffCodec, cut));
            ASSERT_EQ(read.size(), whole.size());
            const auto rows_end = read.begin() + kRows * 67 * 4;
            EXPECT_TRUE(std::equal(read.begin(), rows_end, whole.begin()));
            EXPECT_EQ(std::count(rows_end, read.end(), std::byte{255}), read.end() - rows_end);
        }
    }
}

/// The pixels of an image of one row of samples, whose bytes are written as `order` says.
template <class Value, std::size_t kCount>
Pixels PixelsOfSamples(const char* order, int photometric, int format, const Value (&samples)[kCount],
                       const std::vector<float>& white = {}) {
    const int of_pixel = photometric == PHOTOMETRIC_MINISBLACK ? 1 : 3;
    const MadeImages images;
    const std::string path = images.folder.Path("samples.tif");
    TIFF* tiff = TIFFOpen(path.c_str(), order);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<int>(kCount) / of_pixel);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, of_pixel);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<int>(8 * sizeof(Value)));
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    if (!white.empty()) TIFFSetField(tiff, TIFFTAG_WHITEPOINT, white.data());
    std::vector<Value> written(std::begin(samples), std::end(samples)); // the library swaps them in place
    TIFFWriteEncodedStrip(tiff, 0, written.data(), sizeof samples);
    TIFFClose(tiff);
    return PixelsOf(DecodeWhole(qt::kTiffCodec, FileBytes(path)));
}

TEST(TiffCodec, WideSamples) {
    const Pixels greys = {0xFF000000, 0xFF808080, 0xFFFFFFFF, 0xFF000000};
    const float numbers[] = {-1.0F, 0.5F, 1.0F, std::numeric_limits<float>::quiet_NaN()};
    const double long_numbers[] = {-1.0, 0.5, 7.0, std::numeric_limits<double>::quiet_NaN()};
    const std::uint16_t short_numbers[] = {0xBC00, 0x3800, 0x7C00, 0x7E00, 0x3555, 0x0001};
    const std::uint32_t integers[] = {0, 0x80000000, 0x7FFFFFFF, 0xFFFFFFFF};
    for (const char* order : {"wl", "wb"}) {
        SCOPED_TRACE(order);
        const auto greys_of = [&](int format, const auto& samples) {
            return PixelsOfSamples(order, PHOTOMETRIC_MINISBLACK, format, samples);
        };
        EXPECT_EQ(greys_of(SAMPLEFORMAT_IEEEFP, numbers), greys);
        EXPECT_EQ(greys_of(SAMPLEFORMAT_IEEEFP, long_numbers), greys);
        EXPECT_EQ(greys_of(SAMPLEFORMAT_IEEEFP, short_numbers),
                  (Pixels{0xFF000000, 0xFF808080, 0xFFFFFFFF, 0xFF000000, 0xFF555555, 0xFF000000}));
        EXPECT_EQ(greys_of(SAMPLEFORMAT_UINT, integers),
                  (Pixels{0xFF000000, 0xFF808080, 0xFF7F7F7F, 0xFFFFFFFF}));
    }
}

/// White, and the red, green and blue of sRGB under D50, in each way that L*a*b* is stored; without a word on
/// the white, and under D65 white alone.
TEST(TiffCodec, LabIsShownUnderItsOwnWhite) {
    const std::int8_t bytes[] = {-1, 0, 0, -118, 81, 70, -32, -79, 81, 75, 68, -112};
    const std::int16_t words[] = {-1,     0,       0,      -29'953, 20'685, 17'896,
                                  -7'990, -20'296, 20'726, 19'395,  17'481, -28'679};
    const std::uint8_t offset[] = {255, 128, 128, 138, 209, 198, 224, 49, 209, 75, 196, 16};
    const float numbers[] = {100.0F, 0,       0,      54.29F, 80.80F, 69.89F,
                             87.82F, -79.27F, 80.99F, 29.57F, 68.30F, -112.03F};
    const auto expect_primaries = [](const Pixels& pixels) {
        constexpr std::uint32_t kExpected[] = {0xFFFFFFFF, 0xFFFF0000, 0xFF00FF00, 0xFF0000FF};
        ASSERT_EQ(pixels.size(), std::size(kExpected));
        EXPECT_EQ(pixels[0], kExpected[0]);
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            for (const unsigned shift : {0U, 8U, 16U, 24U}) {
                const auto channel = [&](std::uint32_t pixel) {
                    return static_cast<int>(pixel >> shift & 255);
                };
                EXPECT_NEAR(channel(pixels[i]), channel(kExpected[i]), 14) << i << " " << shift;
            }
        }
    };
    for (const char* order : {"wl", "wb"}) {
        expect_primaries(PixelsOfSamples(order, PHOTOMETRIC_CIELAB, SAMPLEFORMAT_UINT, bytes));
        expect_primaries(PixelsOfSamples(order, PHOTOMETRIC_CIELAB, SAMPLEFORMAT_INT, words));
        expect_primaries(PixelsOfSamples(order, PHOTOMETRIC_ICCLAB, SAMPLEFORMAT_UINT, offset));
        expect_primaries(PixelsOfSamples(order, PHOTOMETRIC_CIELAB, SAMPLEFORMAT_IEEEFP, numbers));
    }
    EXPECT_EQ(PixelsOfSamples("w", PHOTOMETRIC_CIELAB, SAMPLEFORMAT_UINT, bytes, {0.3127F, 0.329F})[0],
              0xFFFFFFFF);
}

TEST(TiffCodec, PagesResolutionAndTexts) {
    const MadeImages images;
    const std::string path = images.Make("-units PixelsPerCentimeter -density 100x50 -size 20x10 xc:red "
                                         "-size 30x15 xc:blue -size 5x40 plasma:",
                                         "pages.tif");
    ASSERT_EQ(std::system(
                  ("tiffset -s 270 'a picture' '" + path + "' && tiffset -s 315 Ann '" + path + "'").c_str()),
              0);
    const Bytes bytes = FileBytes(path);
    EXPECT_EQ(FactsOf(qt::kTiffCodec, bytes).image_count, 3U);
    EXPECT_EQ(ResolutionOf(qt::kTiffCodec, bytes), std::pair(254, 127));
    EXPECT_EQ(DecodeWhole(qt::kTiffCodec, bytes, 2).Row(14)[29], 0xFF0000FF);
    EXPECT_EQ(Difference(RgbaOf(DecodeWhole(qt::kTiffCodec, bytes, 3)), MagickRgba(images, path + "[2]")), 0);
    qt::PixelImage image;
    EXPECT_EQ(qt::kTiffCodec.decode(*qt::MemorySource(std::span(bytes)), 4, image), paramErr);
    const Texts texts = TextsOf(qt::kTiffCodec, bytes);
    EXPECT_EQ(Texts(texts.begin(), texts.begin() + 2), (Texts{{"des", "a picture"}, {"ART", "Ann"}}));
}

TEST(TiffCodec, DirectoriesInACircleAndSizesThatLie) {
    const MadeImages images;
    Bytes bytes = images.MakeBytes("-size 20x10 xc:red -type TrueColor -compress None", "circle.tif");
    const auto at = [&](std::size_t offset) { return std::to_integer<std::size_t>(bytes[offset]); };
    ASSERT_EQ(at(0), std::size_t{'I'});
    const std::size_t directory = at(4) | at(5) << 8 | at(6) << 16;
    const std::size_t next = directory + 2 + 12 * (at(directory) | at(directory + 1) << 8);
    for (std::size_t i = 0; i < 4; ++i) bytes[next + i] = bytes[4 + i];
    EXPECT_EQ(FactsOf(qt::kTiffCodec, bytes).image_count, 1U);
    qt::PixelImage image;
    EXPECT_EQ(qt::kTiffCodec.decode(*qt::MemorySource(std::span(bytes)), 2, image), paramErr);

    for (std::size_t entry = directory + 2; entry < next; entry += 12) {
        if (at(entry) < 2 && at(entry + 1) == 1)
            bytes[entry + 9] = std::byte{0x3E}; // 15,872 and more both ways
    }
    ExpectNoRoomIsTaken(qt::kTiffCodec, bytes, codecBadDataErr);
}

} // namespace
