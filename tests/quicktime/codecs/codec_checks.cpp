#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace corvane::test {
namespace {

void ClearUnseen(Bytes& rgba) {
    for (std::size_t i = 0; i + 3 < rgba.size(); i += 4) {
        if (rgba[i + 3] == std::byte{0})
            std::fill_n(rgba.begin() + static_cast<std::ptrdiff_t>(i), 3, std::byte{});
    }
}

void ExpectResultOrCode(const qt::ImageCodec& codec, const Bytes& bytes) {
    const auto is_known = [](ComponentResult code) {
        return code == noErr || code == codecBadDataErr || code == codecSizeErr || code == paramErr;
    };
    const auto source = qt::MemorySource(std::span(bytes));
    qt::ImageFacts facts;
    const ComponentResult facts_code = codec.read_facts(*source, facts);
    EXPECT_TRUE(is_known(facts_code)) << facts_code;
    qt::PixelImage image;
    const ComponentResult code = codec.decode(*source, 1, image);
    EXPECT_TRUE(is_known(code)) << code;
    EXPECT_TRUE(facts_code == noErr || code != noErr);
    if (code == noErr) {
        EXPECT_EQ(image.width(), facts.description.width);
        EXPECT_EQ(image.height(), facts.description.height);
        EXPECT_EQ(RgbaOf(image).size(),
                  4U * static_cast<unsigned>(image.width()) * static_cast<unsigned>(image.height()));
    }
    std::vector<qt::MetadataItem> items;
    EXPECT_TRUE(codec.read_metadata == nullptr || is_known(codec.read_metadata(*source, items)));
}

} // namespace

Bytes RgbaOf(const qt::PixelImage& image) {
    Bytes rgba;
    rgba.reserve(static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()) * 4);
    for (std::int32_t y = 0; y < image.height(); ++y) {
        for (std::int32_t x = 0; x < image.width(); ++x) {
            const std::uint32_t pixel = image.Row(y)[x];
            for (const std::uint32_t channel :
                 {qt::Red(pixel), qt::Green(pixel), qt::Blue(pixel), qt::Alpha(pixel)}) {
                rgba.push_back(static_cast<std::byte>(channel));
            }
        }
    }
    ClearUnseen(rgba);
    return rgba;
}

Bytes MagickRgba(const MadeImages& images, const std::string& path, const std::string& options) {
    // As 16 bits, since the tool cuts off what it should round when it makes 8 bits of them itself.
    const Bytes words =
        images.MakeBytes("'" + path + "' " + options + " -depth 16 -endian MSB", "rgba:decoded.rgba");
    Bytes rgba;
    rgba.reserve(words.size() / 2);
    for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
        rgba.push_back(static_cast<std::byte>((qt::BigEndian16(&words[i]) + 128) / 257));
    }
    ClearUnseen(rgba);
    return rgba;
}

int Difference(const Bytes& left, const Bytes& right) {
    if (left.size() != right.size()) return -1;
    int most = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        most = std::max(most, std::abs(std::to_integer<int>(left[i]) - std::to_integer<int>(right[i])));
    }
    return most;
}

qt::PixelImage DecodeWhole(const qt::ImageCodec& codec, const Bytes& bytes, std::uint32_t index) {
    const auto source = qt::MemorySource(std::span(bytes));
    qt::PixelImage image;
    EXPECT_EQ(codec.decode(*source, index, image), noErr);
    return image;
}

void ExpectSamplesAreRead(const qt::ImageCodec& codec, std::span<const Sample> samples,
                          const std::string& options) {
    const MadeImages images;
    for (const Sample& sample : samples) {
        SCOPED_TRACE(std::string(sample.arguments) + " " + sample.file);
        const std::string path = images.Make(sample.arguments, sample.file);
        const Bytes bytes = FileBytes(path);
        ASSERT_EQ(qt::FindImageCodec(std::span(bytes).first(std::min(bytes.size(), qt::kSniffedBytes))),
                  &codec);
        const auto source = qt::MemorySource(std::span(bytes));
        qt::ImageFacts facts;
        ASSERT_EQ(codec.read_facts(*source, facts), noErr);
        EXPECT_EQ(facts.description.depth, sample.depth);
        EXPECT_EQ(facts.data_offset + facts.data_size, bytes.size());
        EXPECT_NE(qt::FindImageCodec(facts.description.cType), nullptr);
        const qt::PixelImage image = DecodeWhole(codec, bytes);
        EXPECT_EQ(image.width(), facts.description.width);
        EXPECT_EQ(image.height(), facts.description.height);
        const Bytes rgba = RgbaOf(image);
        const int difference = Difference(rgba, MagickRgba(images, path, options));
        EXPECT_GE(difference, 0) << "another size";
        EXPECT_LE(difference, sample.tolerance);
        for (std::size_t i = 0; i < rgba.size(); i += 4) {
            ASSERT_TRUE(image.has_alpha || rgba[i + 3] == std::byte{255});
            ASSERT_TRUE(!image.is_grey || (rgba[i] == rgba[i + 1] && rgba[i + 1] == rgba[i + 2]));
        }
    }
}

void ExpectDamageIsSurvived(const qt::ImageCodec& codec, const Bytes& whole, int flips) {
    const std::size_t step = std::max<std::size_t>(10, whole.size() / 400);
    for (std::size_t size = 0; size < whole.size(); size += step) {
        ExpectResultOrCode(codec, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    }
    std::mt19937 random(20'251'124);
    for (int i = 0; i < flips; ++i) {
        Bytes flipped = whole;
        const std::size_t range = i % 2 == 0 ? std::min<std::size_t>(whole.size(), 200) : whole.size();
        flipped[random() % range] ^= std::byte{1} << random() % 8;
        ExpectResultOrCode(codec, flipped);
    }
}

} // namespace corvane::test
