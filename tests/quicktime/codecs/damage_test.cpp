// Small images of every format, damaged in thousands of ways.
#include "tests/quicktime/codecs/codec_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <random>

namespace {

using namespace corvane::test;
using Clock = std::chrono::steady_clock;

constexpr int kMutationsOfType = 3000;
constexpr int kMutationsOfPages = 800; ///< of MacPaint, whose images all are large
constexpr int kMostPixels = 1 << 20;   ///< decoded here: more only takes time

/// What an image header says most, and what it should not say.
constexpr std::array<std::uint32_t, 10> kOddValues = {0,      1,      0x7F,   0x80,        0xFF,
                                                      0x7FFF, 0x8000, 0xFFFF, 0x7FFF'FFFF, 0xFFFF'FFFF};

class Mutator {
public:
    explicit Mutator(unsigned seed) : random_(seed) {}

    /// One to four changes: bits, values, pieces that are missing, doubled or cut off.
    Bytes Change(Bytes bytes) {
        for (std::size_t left = 1 + Below(4); left > 0 && !bytes.empty(); --left) ChangeOnce(bytes);
        return bytes;
    }

private:
    std::size_t Below(std::size_t end) { return random_() % end; }

    /// Half of the changes are where headers are.
    std::size_t Place(const Bytes& bytes) {
        return Below(Below(2) == 0 ? std::min<std::size_t>(bytes.size(), 64) : bytes.size());
    }

    void ChangeOnce(Bytes& bytes) {
        const std::size_t at = Place(bytes);
        const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        const auto piece_end =
            place + static_cast<std::ptrdiff_t>(1 + Below(std::min<std::size_t>(bytes.size() - at, 32)));
        switch (Below(8)) {
        case 0: bytes.erase(place, piece_end); break;
        case 1: {
            const Bytes piece(place, piece_end);
            bytes.insert(place, piece.begin(), piece.end());
            break;
        }
        case 2: bytes.resize(at); break;
        case 3:
        case 4: PutValue(bytes, at, std::size_t{1} << Below(3)); break;
        default: bytes[at] ^= std::byte{1} << Below(8);
        }
    }

    void PutValue(Bytes& bytes, std::size_t at, std::size_t size) {
        const std::uint32_t value = kOddValues[Below(kOddValues.size())];
        const bool is_big_endian = Below(2) == 0;
        for (std::size_t i = 0; i < size && at + i < bytes.size(); ++i) {
            bytes[at + i] = static_cast<std::byte>(value >> 8 * (is_big_endian ? size - 1 - i : i));
        }
    }

    std::mt19937 random_;
};

std::vector<Bytes> SeedsOf(const qt::ImageCodec& codec) {
    const std::filesystem::directory_iterator files(IMAGE_SEEDS);
    std::vector<std::string> paths;
    for (const auto& entry : files) paths.push_back(entry.path().string());
    std::ranges::sort(paths);
    std::vector<Bytes> seeds;
    for (const std::string& path : paths) {
        Bytes bytes = FileBytes(path);
        if (SniffedCodec(bytes) == &codec) seeds.push_back(std::move(bytes));
    }
    return seeds;
}

/// For the test's name: the letters and digits of the first type.
std::string NameOf(const ::testing::TestParamInfo<const qt::ImageCodec*>& codec) {
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto character = static_cast<unsigned char>(codec.param->types.front() >> shift);
        if (std::isalnum(character) != 0) name += static_cast<char>(character);
    }
    return name;
}

class Damage : public ::testing::TestWithParam<const qt::ImageCodec*> {};

TEST_P(Damage, EndsInPixelsOrACode) {
    const qt::ImageCodec& codec = *GetParam();
    const std::vector<Bytes> seeds = SeedsOf(codec);
    ASSERT_FALSE(seeds.empty());
    for (const Bytes& seed : seeds) {
        for (std::size_t size = 0; size < seed.size(); size += 10) {
            SCOPED_TRACE(size);
            ExpectResultOrCode(codec, Prefix(seed, size), kMostPixels);
        }
    }
    Mutator mutator(20'251'125);
    Clock::duration longest{};
    const int mutations = &codec == &qt::kMacPaintCodec ? kMutationsOfPages : kMutationsOfType;
    for (int i = 0; i < mutations && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        const Bytes damaged = mutator.Change(seeds[static_cast<std::size_t>(i) % seeds.size()]);
        const auto begin = Clock::now();
        ExpectResultOrCode(codec, damaged, kMostPixels);
        longest = std::max(longest, Clock::now() - begin);
    }
    EXPECT_LT(longest, std::chrono::seconds(2));
}

TEST_P(Damage, DataOfOtherFormatsIsRefused) {
    const qt::ImageCodec& codec = *GetParam();
    for (const qt::ImageCodec* other : qt::ImageCodecs()) {
        if (other == &codec) continue;
        for (const Bytes& seed : SeedsOf(*other)) ExpectResultOrCode(codec, seed, kMostPixels);
    }
    ExpectResultOrCode(codec, {});
    for (const std::size_t size : {1U, 100U, 5000U}) ExpectResultOrCode(codec, Bytes(size));
}

/// Where a seed tells its dimensions, and how.
struct Dimensions {
    const char* seed;
    std::size_t width_at;
    std::size_t height_at;
    bool is_big_endian;
};

TEST(DimensionsThatLie, TakeNoMemory) {
    constexpr std::uint32_t kFar = 16'000; // a GB of pixels: within the limits
    constexpr std::uint32_t kTooFar = 30'001;
    constexpr Dimensions kSeeds[] = {
        {"rgb.bmp", 18, 22, false},  {"image.gif", 6, 8, false},   {"runs.tga", 12, 14, false},
        {"plain.sgi", 6, 8, true},   {"packed.psd", 20, 16, true}, {"plain.psd", 20, 16, true},
        {"plain.qti", 40, 42, true},
    };
    for (const Dimensions& seed : kSeeds) {
        SCOPED_TRACE(seed.seed);
        const Bytes good = FileBytes(std::string(IMAGE_SEEDS) + "/" + seed.seed);
        const qt::ImageCodec* codec = SniffedCodec(good);
        ASSERT_NE(codec, nullptr);
        for (const std::uint32_t size : {kFar, kTooFar}) {
            Bytes lying = good;
            for (const std::size_t at : {seed.width_at, seed.height_at}) {
                for (std::size_t i = 0; i < 2; ++i)
                    lying[at + i] = static_cast<std::byte>(size >> 8 * (seed.is_big_endian ? 1 - i : i));
            }
            const bool is_judged_by_data = size == kFar || codec == &qt::kQuickTimeImageCodec;
            ExpectNoRoomIsTaken(*codec, lying, is_judged_by_data ? codecBadDataErr : codecSizeErr);
            EXPECT_EQ(FactsCode(*codec, lying), size == kFar ? noErr : codecSizeErr);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Codecs, Damage,
                         ::testing::ValuesIn(qt::ImageCodecs().begin(), qt::ImageCodecs().end()), NameOf);

} // namespace
