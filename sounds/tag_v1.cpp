#include "sounds/tag_v1.h"

#include "platform/text/utf.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace corvane {
namespace {

struct Field {
    std::string_view name;
    std::size_t offset;
    std::size_t size;
};

constexpr Field kComment = {"Comment", 97, 30};
constexpr Field kTrack = {"Track", 126, 1}; // a number, behind a zero in the comment's last two bytes
constexpr Field kGenre = {"Genre", 127, 1};
constexpr auto kFields = std::to_array<Field>(
    {{"Name", 3, 30}, {"Artist", 33, 30}, {"Album", 63, 30}, {"Year", 93, 4}, kComment, kTrack, kGenre});
constexpr std::size_t kBeforeTrack = 125;
constexpr char kNoGenre = '\xFF';

// The value of the first frame of a name, empty without one.
std::string FirstValue(const Id3Tag& tag, std::string_view name) {
    const TagName& row = *FindTagName(name);
    for (const TagFrame& frame : tag.Frames())
        if (IsFrameOf(row, frame.id)) return TagValue(tag, frame, row).value_or(std::string());
    return {};
}

void PutText(std::string& v1, const Field& field, std::string_view value) {
    const std::string latin1 = utf::NearestLatin1(value).substr(0, field.size);
    std::fill_n(v1.begin() + static_cast<std::ptrdiff_t>(field.offset), field.size, '\0');
    v1.replace(field.offset, latin1.size(), latin1);
}

// "7", "7/12"; 0 for what is no track number of one byte.
char TrackNumber(std::string_view value) {
    std::uint8_t number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    return error == std::errc() ? static_cast<char>(number) : '\0';
}

void PutField(std::string& v1, const Field& field, std::string_view value) {
    const bool has_track = v1[kBeforeTrack] == '\0' && v1[kTrack.offset] != '\0';
    if (field.name == kGenre.name) {
        const auto genre = GenreNumber(value);
        v1[kGenre.offset] = genre ? static_cast<char>(*genre) : kNoGenre;
    } else if (field.name == kTrack.name) {
        const char number = TrackNumber(value);
        if (number == '\0' && !has_track) return; // the bytes are the comment's
        v1[kBeforeTrack] = '\0';
        v1[kTrack.offset] = number;
    } else {
        const std::size_t size =
            field.name == kComment.name && has_track ? kBeforeTrack - field.offset : field.size;
        PutText(v1, {field.name, field.offset, size}, value);
    }
}

} // namespace

bool IsV1Tag(std::string_view bytes) {
    return bytes.size() == kV1Size && bytes.starts_with("TAG");
}

std::string UpdatedV1Tag(std::string_view old, const Id3Tag& tag, std::span<const TagName* const> names) {
    std::string v1(old);
    if (old.empty()) {
        v1.assign("TAG").resize(kV1Size, '\0');
        v1[kGenre.offset] = kNoGenre;
    }
    for (const Field& field : kFields) {
        const bool named =
            std::ranges::any_of(names, [&](const TagName* row) { return row->name == field.name; });
        if (named || old.empty()) PutField(v1, field, FirstValue(tag, field.name));
    }
    return v1;
}

} // namespace corvane
