#include "platform/quicktime/image_codecs/packbits.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace qt {
namespace {

constexpr std::size_t kLongest = 128; ///< units of a run or a piece

/// Copies the unit at `from` over the units behind it: 1 or 2 bytes.
template <std::size_t kUnit>
void Repeat(const std::byte* unit, std::byte* out, std::size_t size) {
    if constexpr (kUnit == 1) {
        std::memset(out, std::to_integer<int>(*unit), size);
    } else {
        for (std::size_t i = 0; i < size; ++i) out[i] = unit[i % kUnit];
    }
}

template <std::size_t kUnit>
Unpacked Unpack(std::span<const std::byte> packed, std::span<std::byte> out) {
    Unpacked done;
    while (done.read < packed.size() && done.written < out.size()) {
        const auto head = std::to_integer<std::size_t>(packed[done.read++]);
        const std::size_t room = out.size() - done.written;
        const std::size_t available = packed.size() - done.read;
        if (head < kLongest) {
            const std::size_t stored = std::min((head + 1) * kUnit, available);
            const std::size_t count = std::min(stored, room);
            std::memcpy(&out[done.written], packed.data() + done.read, count);
            done.read += stored;
            done.written += count;
        } else if (head > kLongest) { // 128 means nothing
            if (available < kUnit) break;
            const std::size_t count = std::min((257 - head) * kUnit, room);
            Repeat<kUnit>(&packed[done.read], &out[done.written], count);
            done.read += kUnit;
            done.written += count;
        }
    }
    return done;
}

std::uint64_t Load(const std::byte* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Where in a little-endian word the first zero unit is; 8 bytes when there is none.
template <std::size_t kUnit>
std::size_t FirstZero(std::uint64_t word) {
    constexpr std::uint64_t kOnes = kUnit == 1 ? 0x0101'0101'0101'0101 : 0x0001'0001'0001'0001;
    constexpr std::uint64_t kTops = kOnes << (8 * kUnit - 1);
    const std::uint64_t zeros = (word - kOnes) & ~word & kTops; // exact up to the first one
    return static_cast<std::size_t>(std::countr_zero(zeros)) / (8 * kUnit) * kUnit;
}

template <std::size_t kUnit>
bool Equal(const std::byte* left, const std::byte* right) {
    return std::memcmp(left, right, kUnit) == 0;
}

/// The next place from `at` on where so many equal units begin that a run is shorter than a copy: three
/// bytes, or two words. The end when there is none.
template <std::size_t kUnit>
const std::byte* FindRun(const std::byte* at, const std::byte* end) {
    constexpr std::size_t kWorthIt = kUnit == 1 ? 3 : 2;
    constexpr std::size_t kBehind = (kWorthIt - 1) * kUnit;
    static_assert(std::endian::native == std::endian::little);
    for (; end - at >= static_cast<std::ptrdiff_t>(sizeof(std::uint64_t) + kBehind);
         at += sizeof(std::uint64_t)) {
        const std::uint64_t here = Load(at);
        std::uint64_t differences = here ^ Load(at + kUnit);
        if constexpr (kWorthIt == 3) differences |= here ^ Load(at + 2 * kUnit);
        const std::size_t zero = FirstZero<kUnit>(differences);
        if (zero < sizeof(std::uint64_t)) return at + zero;
    }
    for (; end - at >= static_cast<std::ptrdiff_t>(kWorthIt * kUnit); at += kUnit) {
        const bool all = Equal<kUnit>(at, at + kUnit) && (kWorthIt == 2 || Equal<kUnit>(at, at + kBehind));
        if (all) return at;
    }
    return end;
}

template <std::size_t kUnit>
std::size_t Pack(std::span<const std::byte> bytes, std::byte* out) {
    const std::byte* at = bytes.data();
    const std::byte* const end = at + bytes.size();
    std::byte* const begin = out;
    while (at < end) {
        const std::byte* const run = FindRun<kUnit>(at, end);
        while (at < run) {
            const std::size_t size = std::min(static_cast<std::size_t>(run - at), kLongest * kUnit);
            *out++ = static_cast<std::byte>(size / kUnit - 1);
            std::memcpy(out, at, size);
            out += size;
            at += size;
        }
        if (at == end) break;
        const std::byte* const limit = at + std::min(static_cast<std::size_t>(end - at), kLongest * kUnit);
        const std::byte* behind = at + kUnit;
        while (behind < limit && Equal<kUnit>(at, behind)) behind += kUnit;
        *out++ = static_cast<std::byte>(257 - static_cast<std::size_t>(behind - at) / kUnit);
        std::memcpy(out, at, kUnit);
        out += kUnit;
        at = behind;
    }
    return static_cast<std::size_t>(out - begin);
}

} // namespace

Unpacked UnpackBits(std::span<const std::byte> packed, std::span<std::byte> out) {
    return Unpack<1>(packed, out);
}

Unpacked UnpackWords(std::span<const std::byte> packed, std::span<std::byte> out) {
    return Unpack<2>(packed, out);
}

std::size_t PackBits(std::span<const std::byte> bytes, std::byte* out) {
    return Pack<1>(bytes, out);
}

std::size_t PackWords(std::span<const std::byte> words, std::byte* out) {
    return Pack<2>(words, out);
}

} // namespace qt
