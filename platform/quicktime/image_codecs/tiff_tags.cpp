#include "platform/quicktime/image_codecs/tiff_tags.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace qt {
namespace {

/// Where the numbers of a directory lie, and how long they are.
struct Form {
    bool little = false;
    std::size_t count_size;  ///< bytes of the number of tags
    std::size_t offset_size; ///< of an offset, and of a tag's number of values
    std::size_t tag_size;
};
constexpr Form kClassic = {false, 2, 4, 12};
constexpr Form kBig = {false, 8, 8, 20};

std::uint64_t NumberAt(std::span<const std::byte> bytes, std::size_t at, std::size_t size, bool little) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i)
        number = number << 8 | std::to_integer<std::uint64_t>(bytes[at + (little ? size - 1 - i : i)]);
    return number;
}

/// Bytes of a value of a type; unknown types have none.
std::uint64_t SizeOfType(std::uint64_t type) {
    constexpr std::array<std::uint8_t, 19> kSizes = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < kSizes.size() ? kSizes.at(static_cast<std::size_t>(type)) : 0;
}

} // namespace

bool HasBearableTiffTags(DataSource& source) {
    constexpr int kMostDirectories = 1'000;
    constexpr std::uint64_t kMostTags = 1'000'000;
    constexpr std::uint64_t kMostTagsOfOne = 65'535;
    constexpr std::uint64_t kAlways = std::uint64_t{16} << 20;
    constexpr std::uint64_t kBigVersion = 43;
    std::array<std::byte, 16> head{};
    if (source.Read(0, head) < 8) return true; // nothing that could be read
    Form form = kClassic;
    const bool little = head[0] == std::byte{'I'};
    if (NumberAt(head, 2, 2, little) == kBigVersion) form = kBig;
    form.little = little;
    std::uint64_t offset = NumberAt(head, form.offset_size, form.offset_size, little);
    std::uint64_t tags = 0;
    std::vector<std::byte> bytes;
    for (int directory = 0; directory < kMostDirectories && offset != 0 && tags < kMostTags; ++directory) {
        std::array<std::byte, 8> start{};
        if (source.Read(offset, std::span(start).first(form.count_size)) != form.count_size) return true;
        const std::uint64_t count = std::min(NumberAt(start, 0, form.count_size, little), kMostTagsOfOne);
        bytes.resize(static_cast<std::size_t>(count) * form.tag_size + form.offset_size);
        if (source.Read(offset + form.count_size, bytes) != bytes.size()) return true;
        std::uint64_t left = source.GetSize() + kAlways;
        for (std::size_t at = 0; at + form.offset_size < bytes.size(); at += form.tag_size) {
            const std::uint64_t size = SizeOfType(NumberAt(bytes, at + 2, 2, little));
            const std::uint64_t values = NumberAt(bytes, at + 4, form.offset_size, little);
            if (size == 0 || values > source.GetSize() / size) continue; // the library passes it over
            if (values > left / size) return false;
            left -= values * size;
        }
        tags += count;
        offset = NumberAt(bytes, bytes.size() - form.offset_size, form.offset_size, little);
    }
    return true;
}

} // namespace qt
