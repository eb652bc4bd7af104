#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace corvane::test {
namespace {

void ClearUnseen(Bytes& rgba) {
    for (std::size_t i = 0; i + 3 < rgba.size(); i += 4) {
        if (rgba[i + 3] == std::byte{0})
            std::fill_n(rgba.begin() + static_cast<std::ptrdiff_t>(i), 3, std::byte{});
    }
}

bool IsKnown(ComponentResult code) {
    return code == noErr || code == codecBadDataErr || code == codecSizeErr || code == paramErr;
}

} // namespace

Bytes BytesOf(std::initializer_list<int> values) {
    Bytes bytes;
    for (const int value : values) bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

Bytes BytesOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

Bytes Prefix(const Bytes& bytes, std::size_t size) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

Bytes WithSegment(const Bytes& jpeg, int marker, std::string_view content) {
    const int length = static_cast<int>(content.size()) + 2;
    Bytes segment = BytesOf({0xFF, marker, length >> 8, length});
    for (const char character : content) segment.push_back(static_cast<std::byte>(character));
    Bytes bytes = jpeg;
    bytes.insert(bytes.begin() + 2, segment.begin(), segment.end());
    return bytes;
}

Bytes RgbaOf(const qt::PixelImage& image) {
    Bytes rgba;
    rgba.reserve(static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()) * 4);
    ForEachPixel(image, [&](int, int, std::uint32_t pixel) {
        for (const std::uint32_t channel :
             {qt::Red(pixel), qt::Green(pixel), qt::Blue(pixel), qt::Alpha(pixel)})
            rgba.push_back(static_cast<std::byte>(channel));
    });
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

double Psnr(const Bytes& left, const Bytes& right) {
    double sum = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        const double difference = std::to_integer<int>(left[i]) - std::to_integer<int>(right.at(i));
        sum += difference * difference;
    }
    return 10 * std::log10(255.0 * 255.0 / (sum / static_cast<double>(left.size())));
}

const qt::ImageCodec* SniffedCodec(const Bytes& bytes) {
    return qt::FindImageCodec(std::span(bytes).first(std::min(bytes.size(), qt::kSniffedBytes)));
}

ComponentResult FactsCode(const qt::ImageCodec& codec, const Bytes& bytes) {
    qt::ImageFacts facts;
    return codec.read_facts(*qt::MemorySource(std::span(bytes)), facts);
}

qt::ImageFacts FactsOf(const qt::ImageCodec& codec, const Bytes& bytes) {
    qt::ImageFacts facts;
    EXPECT_EQ(codec.read_facts(*qt::MemorySource(std::span(bytes)), facts), noErr);
    return facts;
}

qt::PixelImage DecodeWhole(const qt::ImageCodec& codec, const Bytes& bytes, std::uint32_t index) {
    qt::PixelImage image;
    EXPECT_EQ(codec.decode(*qt::MemorySource(std::span(bytes)), index, image), noErr);
    return image;
}

Texts TextsOf(const qt::ImageCodec& codec, const Bytes& bytes) {
    std::vector<qt::MetadataItem> items;
    EXPECT_EQ(codec.read_metadata(*qt::MemorySource(std::span(bytes)), items), noErr);
    Texts texts;
    for (const qt::MetadataItem& item : items) {
        EXPECT_EQ(item.type >> 24, 0xA9U);
        std::string type;
        for (const int shift : {16, 8, 0}) type += static_cast<char>(item.type >> shift & 0xFF);
        texts.emplace_back(type, item.text);
    }
    return texts;
}

std::pair<int, int> ResolutionOf(const qt::ImageCodec& codec, const Bytes& bytes) {
    const ImageDescription description = FactsOf(codec, bytes).description;
    return {(description.hRes + 0x8000) >> 16, (description.vRes + 0x8000) >> 16};
}

std::string Drawn(const qt::ImageCodec& codec, const Bytes& bytes) {
    const qt::PixelImage image = DecodeWhole(codec, bytes);
    std::string text;
    ForEachPixel(image, [&](int x, int, std::uint32_t pixel) {
        switch (pixel) {
        case 0xFF000000: text += '#'; break;
        case 0xFFFFFFFF: text += '.'; break;
        case 0xFFFF0000: text += 'r'; break;
        case 0xFF00FF00: text += 'g'; break;
        case 0xFF0000FF: text += 'b'; break;
        default: text += '?';
        }
        if (x + 1 == image.width()) text += '\n';
    });
    return text;
}

void ExpectSamplesAreRead(const qt::ImageCodec& codec, std::span<const Sample> samples,
                          const std::string& options, int flips) {
    const MadeImages images;
    for (const Sample& sample : samples) {
        SCOPED_TRACE(std::string(sample.arguments) + " " + sample.file);
        const std::string path = images.Make(sample.arguments, sample.file);
        const Bytes bytes = FileBytes(path);
        ASSERT_EQ(SniffedCodec(bytes), &codec);
        const qt::ImageFacts facts = FactsOf(codec, bytes);
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
        if (flips > 0) ExpectDamageIsSurvived(codec, bytes, flips);
    }
}

void ExpectDamageIsSurvived(const qt::ImageCodec& codec, const Bytes& whole, int flips) {
    const std::size_t step = std::max<std::size_t>(10, whole.size() / 400);
    for (std::size_t size = 0; size < whole.size(); size += step)
        ExpectResultOrCode(codec, Prefix(whole, size));
    std::mt19937 random(20'251'124);
    for (int i = 0; i < flips; ++i) {
        Bytes flipped = whole;
        const std::size_t range = i % 2 == 0 ? std::min<std::size_t>(whole.size(), 200) : whole.size();
        flipped[random() % range] ^= std::byte{1} << random() % 8;
        ExpectResultOrCode(codec, flipped);
    }
}

void ExpectResultOrCode(const qt::ImageCodec& codec, const Bytes& bytes, int most_pixels) {
    const auto source = qt::MemorySource(std::span(bytes));
    std::vector<qt::MetadataItem> items;
    EXPECT_TRUE(codec.read_metadata == nullptr || IsKnown(codec.read_metadata(*source, items)));
    qt::ImageFacts facts;
    const ImageDescription& description = facts.description;
    const ComponentResult described = codec.read_facts(*source, facts);
    ASSERT_TRUE(IsKnown(described)) << described;
    if (described == noErr) {
        EXPECT_TRUE(description.width > 0 && description.width <= int{qt::kMaximumDimension});
        EXPECT_TRUE(description.height > 0 && description.height <= int{qt::kMaximumDimension});
        EXPECT_TRUE((description.spatialQuality >= 0 && description.spatialQuality <= 1024) ||
                    &codec == &qt::kQuickTimeImageCodec); // whose files state it
        if (description.width * description.height > most_pixels) return;
    }
    for (const std::uint32_t index : {1U, facts.image_count}) {
        qt::PixelImage image;
        const ComponentResult code = codec.decode(*source, index, image);
        ASSERT_TRUE(IsKnown(code)) << code;
        if (code != noErr || index > 1) continue;
        ASSERT_EQ(described, noErr);
        ASSERT_EQ(image.width(), description.width);
        ASSERT_EQ(image.height(), description.height);
    }
}

void ExpectNoRoomIsTaken(const qt::ImageCodec& codec, const Bytes& bytes, ComponentResult code) {
    qt::PixelImage image;
    EXPECT_EQ(codec.decode(*qt::MemorySource(std::span(bytes)), 1, image), code);
    EXPECT_EQ(image.width(), 0);
}

} // namespace corvane::test
