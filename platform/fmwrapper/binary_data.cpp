#include "platform/fmwrapper/objects.h"
#include "platform/fmwrapper/operation.h"
#include "platform/text/utf.h"

#include <cstring>

using fm::Operation;

namespace {

constexpr std::uint32_t kFilePathStream = 0x464E414D; // "FNAM"

const fm::Stream& StreamAt(const FM_BinaryData* binary, std::int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= binary->streams.size()) throw fm::Refused();
    return binary->streams[static_cast<std::size_t>(index)];
}

void AddStream(FM_BinaryData* binary, std::uint32_t type, const void* bytes, std::size_t size) {
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    binary->streams.push_back({type, std::make_shared<const fm::Bytes>(first, first + size)});
}

} // namespace

std::int32_t FM_BinaryData::IndexOf(std::uint32_t type) const {
    for (std::size_t i = 0; i < streams.size(); ++i)
        if (streams[i].type == type) return static_cast<std::int32_t>(i);
    return kFM_NotFound;
}

FM_BinaryData* FM_BinaryData_Constructor1(FM_Status* status) {
    return Operation("FM_BinaryData_Constructor1", status, [] { return new FM_BinaryData; });
}

FM_BinaryData* FM_BinaryData_Constructor2(const FM_BinaryData* other, FM_Status* status) {
    return Operation("FM_BinaryData_Constructor2", status, [&] { return new FM_BinaryData(*other); });
}

void FM_BinaryData_Delete(FM_BinaryData* binary, FM_Status* status) {
    fm::Delete("FM_BinaryData_Delete", binary, status);
}

std::int32_t FM_BinaryData_GetCount(const FM_BinaryData* binary, FM_Status* status) {
    return Operation("FM_BinaryData_GetCount", status,
                     [&] { return static_cast<std::int32_t>(binary->streams.size()); });
}

std::int32_t FM_BinaryData_GetIndex(const FM_BinaryData* binary, const FM_QuadChar* type, FM_Status* status) {
    return Operation("FM_BinaryData_GetIndex", status, [&] { return binary->IndexOf(type->code); });
}

void FM_BinaryData_GetType(const FM_BinaryData* binary, std::int32_t index, FM_QuadChar* type,
                           FM_Status* status) {
    Operation("FM_BinaryData_GetType", status, [&] { type->code = StreamAt(binary, index).type; });
}

std::uint32_t FM_BinaryData_GetSize(const FM_BinaryData* binary, std::int32_t index, FM_Status* status) {
    return Operation("FM_BinaryData_GetSize", status,
                     [&] { return static_cast<std::uint32_t>(StreamAt(binary, index).bytes->size()); });
}

FM_Error FM_BinaryData_GetData(const FM_BinaryData* binary, std::int32_t index, std::uint32_t offset,
                               std::uint32_t amount, void* buffer, FM_Status* status) {
    return Operation("FM_BinaryData_GetData", status, [&]() -> FM_Error {
        const fm::Bytes& bytes = *StreamAt(binary, index).bytes;
        if (offset > bytes.size() || amount > bytes.size() - offset) return kFM_ErrorWrongParameter;
        if (amount > 0) std::memcpy(buffer, bytes.data() + offset, amount);
        return kFM_ErrorNone;
    });
}

FM_Error FM_BinaryData_Add(FM_BinaryData* binary, const FM_QuadChar* type, std::uint32_t size,
                           const void* bytes, FM_Status* status) {
    return Operation("FM_BinaryData_Add", status, [&]() -> FM_Error {
        AddStream(binary, type->code, bytes, size);
        return kFM_ErrorNone;
    });
}

FM_Error FM_BinaryData_AddFromReader(FM_BinaryData* binary, const FM_QuadChar* type, std::uint32_t size,
                                     FM_StreamReader reader, void* context, FM_Status* status) {
    return Operation("FM_BinaryData_AddFromReader", status, [&]() -> FM_Error {
        auto bytes = std::make_shared<fm::Bytes>(size);
        if (!reader(context, 0, size, bytes->data())) return kFM_ErrorReading;
        binary->streams.push_back({type->code, std::move(bytes)});
        return kFM_ErrorNone;
    });
}

bool FM_BinaryData_Remove(FM_BinaryData* binary, const FM_QuadChar* type, FM_Status* status) {
    return Operation("FM_BinaryData_Remove", status, [&] {
        const std::int32_t index = binary->IndexOf(type->code);
        if (index < 0) return false;
        binary->streams.erase(binary->streams.begin() + index);
        return true;
    });
}

void FM_BinaryData_RemoveAll(FM_BinaryData* binary, FM_Status* status) {
    Operation("FM_BinaryData_RemoveAll", status, [&] {
        binary->streams.clear();
        binary->reference.clear();
    });
}

FM_Error FM_BinaryData_GetFNAMData(const FM_BinaryData* binary, FM_Text* path_list, FM_Status* status) {
    return Operation("FM_BinaryData_GetFNAMData", status, [&]() -> FM_Error {
        const std::int32_t index = binary->IndexOf(kFilePathStream);
        if (index < 0) {
            path_list->units = binary->reference;
            return kFM_ErrorNone;
        }
        const fm::Bytes& bytes = *StreamAt(binary, index).bytes;
        path_list->units = utf::ToUtf16({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        return kFM_ErrorNone;
    });
}

FM_Error FM_BinaryData_AddFNAMData(FM_BinaryData* binary, const FM_Text* path_list, FM_Status* status) {
    return Operation("FM_BinaryData_AddFNAMData", status, [&]() -> FM_Error {
        const std::string utf8 = utf::ToUtf8(path_list->units);
        AddStream(binary, kFilePathStream, utf8.data(), utf8.size());
        return kFM_ErrorNone;
    });
}
