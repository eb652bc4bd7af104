#include "platform/fmwrapper/encodings.h"
#include "platform/fmwrapper/objects.h"
#include "platform/fmwrapper/operation.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <cstring>

using fm::Operation;

namespace {

// The slice of `units` that a position and a size name, held to what is there.
std::u16string_view Slice(const std::u16string& units, std::int32_t position, std::int32_t size) {
    if (position < 0) throw fm::Refused();
    const auto start = std::min(static_cast<std::size_t>(position), units.size());
    const auto count = size < 0 ? std::u16string_view::npos : static_cast<std::size_t>(size);
    return std::u16string_view(units).substr(start, count);
}

} // namespace

FM_Text* FM_Text_Constructor1(FM_Status* status) {
    return Operation("FM_Text_Constructor1", status, [] { return new FM_Text; });
}

void FM_Text_Delete(FM_Text* text, FM_Status* status) {
    fm::Delete("FM_Text_Delete", text, status);
}

void FM_Text_Assign(FM_Text* text, const char* bytes, FM_Encoding encoding, FM_Status* status) {
    Operation("FM_Text_Assign", status, [&] { text->units = fm::Decode(bytes, encoding); });
}

void FM_Text_AssignWithLength(FM_Text* text, const char* bytes, std::int32_t length, FM_Encoding encoding,
                              FM_Status* status) {
    Operation("FM_Text_AssignWithLength", status, [&] {
        if (length < 0) throw fm::Refused();
        text->units = fm::Decode({bytes, static_cast<std::size_t>(length)}, encoding);
    });
}

void FM_Text_AssignUnicode(FM_Text* text, const char16_t* units, FM_Status* status) {
    Operation("FM_Text_AssignUnicode", status, [&] { text->units = units; });
}

void FM_Text_AssignUnicodeWithLength(FM_Text* text, const char16_t* units, std::int32_t count,
                                     FM_Status* status) {
    Operation("FM_Text_AssignUnicodeWithLength", status, [&] {
        if (count < 0) throw fm::Refused();
        text->units.assign(units, static_cast<std::size_t>(count));
    });
}

std::int32_t FM_Text_GetSize(const FM_Text* text, FM_Status* status) {
    return Operation("FM_Text_GetSize", status,
                     [&] { return static_cast<std::int32_t>(text->units.size()); });
}

void FM_Text_GetBytes(const FM_Text* text, char* buffer, std::int32_t buffer_size, std::int32_t position,
                      std::int32_t size, FM_Encoding encoding, FM_Status* status) {
    Operation("FM_Text_GetBytes", status, [&] {
        if (buffer_size < 1) throw fm::Refused();
        const std::string bytes = fm::Encode(Slice(text->units, position, size), encoding);
        const auto room = static_cast<std::size_t>(buffer_size - 1);
        const std::string_view kept = encoding == kFM_EncodingMacRoman
                                          ? std::string_view(bytes).substr(0, room)
                                          : utf::CutAtCharacter(bytes, room);
        std::memcpy(buffer, kept.data(), kept.size());
        buffer[kept.size()] = '\0';
    });
}

void FM_Text_GetUnicode(const FM_Text* text, char16_t* buffer, std::int32_t position, std::int32_t size,
                        FM_Status* status) {
    Operation("FM_Text_GetUnicode", status, [&] {
        const std::u16string_view slice = Slice(text->units, position, size);
        std::copy(slice.begin(), slice.end(), buffer);
    });
}

void FM_Text_AppendText(FM_Text* text, const FM_Text* other, std::int32_t position, std::int32_t size,
                        FM_Status* status) {
    Operation("FM_Text_AppendText", status,
              [&] { text->units += std::u16string(Slice(other->units, position, size)); });
}

std::int32_t FM_Text_Find(const FM_Text* text, const FM_Text* other, std::int32_t start, FM_Status* status) {
    return Operation("FM_Text_Find", status, [&] {
        const auto found = text->units.find(other->units, static_cast<std::size_t>(std::max(start, 0)));
        return found == std::u16string::npos ? kFM_NotFound : static_cast<std::int32_t>(found);
    });
}

void FM_Text_DeleteText(FM_Text* text, std::int32_t position, std::int32_t size, FM_Status* status) {
    Operation("FM_Text_DeleteText", status, [&] {
        const auto length = Slice(text->units, position, size).size();
        if (length > 0) text->units.erase(static_cast<std::size_t>(position), length);
    });
}

bool FM_Text_operatorEQ(const FM_Text* text, const FM_Text* other, FM_Status* status) {
    return Operation("FM_Text_operatorEQ", status, [&] { return text->units == other->units; });
}
