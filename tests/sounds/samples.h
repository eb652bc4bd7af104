// Blocks of 16-bit samples for the tests, put together byte by byte.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace corvane {

inline std::vector<std::byte> SamplesToBytes(const std::vector<int>& samples, std::endian order) {
    std::vector<std::byte> bytes;
    for (const int sample : samples) {
        const int low = sample & 0xFF;
        const int high = sample >> 8 & 0xFF;
        bytes.push_back(static_cast<std::byte>(order == std::endian::big ? high : low));
        bytes.push_back(static_cast<std::byte>(order == std::endian::big ? low : high));
    }
    return bytes;
}

inline std::vector<int> BytesToSamples(std::span<const std::byte> bytes, std::endian order) {
    std::vector<int> samples;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const int first = std::to_integer<int>(bytes[i]);
        const int second = std::to_integer<int>(bytes[i + 1]);
        const int value = order == std::endian::big ? first * 256 + second : second * 256 + first;
        samples.push_back(value < 32768 ? value : value - 65536);
    }
    return samples;
}

/// The same numbers in every run; the first ones are the ends of the range.
inline std::vector<int> RandomSamples(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<int> samples = {-32768, 32767, 0, -1, 1};
    while (samples.size() < count) samples.push_back(static_cast<int>(random() % 65536) - 32768);
    samples.resize(count);
    return samples;
}

} // namespace corvane
