#include "plugin/hex_blocks.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace corvane {
namespace {

constexpr std::int32_t kBrokenData = -8969;

std::string RandomBytes(std::size_t count) {
    std::mt19937 random(7);
    std::string bytes;
    while (bytes.size() < count) bytes += static_cast<char>(random());
    return bytes;
}

TEST(HexBlocks, ComeBackAsTheyWere) {
    for (const std::string& settings : {std::string(), std::string("\0", 1), std::string("rate=44100\n"),
                                        RandomBytes(70'000), std::string(3'000'000, 'x')}) {
        const SettingsBytes block = SettingsToHexBlock(settings);
        ASSERT_EQ(block.code, 0);
        ASSERT_TRUE(block.bytes.starts_with("<hex>") && block.bytes.ends_with("</hex>"));
        const std::string digits = block.bytes.substr(5, block.bytes.size() - 11);
        EXPECT_EQ(digits.find_first_not_of("0123456789ABCDEF"), std::string::npos);
        const SettingsBytes back = HexBlockToSettings(block.bytes);
        EXPECT_EQ(back.code, 0);
        EXPECT_TRUE(back.bytes == settings) << settings.size() << " bytes";
    }
}

// The blocks are from Python: (len(s).to_bytes(4, "big") + zlib.compress(s, level)).hex()
TEST(HexBlocks, ReadsBlocksOfOtherWriters) {
    EXPECT_EQ(HexBlockToSettings("<hex>00000005789C2B4E2D2949050006810226</hex>").bytes, "sette");
    EXPECT_EQ(HexBlockToSettings("<hex>00000005789c2b4e2d2949050006810226</hex>").bytes, "sette");
    EXPECT_EQ(HexBlockToSettings("<hex>000000057801010500FAFF736574746506810226</hex>").bytes, "sette");
    // Bytes behind the stream, and a length with room to spare
    EXPECT_EQ(HexBlockToSettings("<hex>00000005789C2B4E2D2949050006810226FFFF</hex>").bytes, "sette");
    EXPECT_EQ(HexBlockToSettings("<hex>00000050789C2B4E2D2949050006810226</hex>").bytes, "sette");
}

TEST(HexBlocks, RefusesOtherTexts) {
    const std::string good = SettingsToHexBlock("settings").bytes;
    ASSERT_EQ(HexBlockToSettings(good).code, 0);
    for (const std::string& text :
         {std::string(), " " + good, good + "\r", good.substr(1), good.substr(0, good.size() - 1),
          std::string("<hex>"), std::string("<hex</hex>"), std::string("<hex></hex>"),
          std::string("<hex>000000</hex>"), "<HEX>" + good.substr(5),
          good.substr(0, 5) + "0" + good.substr(5), good.substr(0, 5) + "0g" + good.substr(7),
          good.substr(0, 7) + " " + good.substr(8)}) {
        EXPECT_EQ(HexBlockToSettings(text).code, -50) << text;
    }
}

TEST(HexBlocks, RefusesLengthsThatLie) {
    const std::string payload = CompressSettings(std::string(100'000, 'x')).bytes;
    const auto with_length = [&](const std::string& length) {
        return ExpandSettings(length + payload.substr(4)).code;
    };
    EXPECT_EQ(with_length({'\0', '\1', '\x86', '\xA0'}), 0);
    EXPECT_EQ(with_length({'\0', '\1', '\x86', '\x9F'}), kBrokenData);
    EXPECT_EQ(with_length({'\0', '\0', '\0', '\0'}), kBrokenData);
    EXPECT_EQ(with_length({'\0', '\x10', '\0', '\0'}), kBrokenData);
    EXPECT_EQ(with_length({'\xFF', '\xFF', '\xFF', '\xFF'}), -108);
    EXPECT_EQ(CompressSettings(std::string(kLargestSettings + 1, 'x')).code, -108);
}

TEST(HexBlocks, RefusesBrokenData) {
    const std::string payload = CompressSettings("settings of some length, length, length").bytes;
    for (std::size_t size = 5; size < payload.size(); ++size) {
        EXPECT_EQ(ExpandSettings(payload.substr(0, size)).code, kBrokenData) << size;
    }
    for (std::size_t i = 4; i < payload.size(); ++i) {
        for (const int bit : {1, 16, 128}) {
            std::string broken = payload;
            broken[i] = static_cast<char>(broken[i] ^ bit);
            EXPECT_EQ(ExpandSettings(broken).code, kBrokenData) << i;
        }
    }
}

} // namespace
} // namespace corvane
