#include "platform/fmwrapper/objects.h"
#include "platform/fmwrapper/operation.h"

using fm::Operation;

namespace {

const FM_Data& At(const FM_DataVect* list, std::int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= list->values.size()) throw fm::Refused();
    return list->values[static_cast<std::size_t>(index)];
}

} // namespace

FM_DataVect* FM_DataVect_Constructor1(FM_Status* status) {
    return Operation("FM_DataVect_Constructor1", status, [] { return new FM_DataVect; });
}

void FM_DataVect_Delete(FM_DataVect* list, FM_Status* status) {
    fm::Delete("FM_DataVect_Delete", list, status);
}

std::int32_t FM_DataVect_Size(const FM_DataVect* list, FM_Status* status) {
    return Operation("FM_DataVect_Size", status,
                     [&] { return static_cast<std::int32_t>(list->values.size()); });
}

const FM_Data* FM_DataVect_At(const FM_DataVect* list, std::int32_t index, FM_Status* status) {
    return Operation("FM_DataVect_At", status, [&] { return &At(list, index); });
}

const FM_Text* FM_DataVect_AtAsText(const FM_DataVect* list, std::int32_t index, FM_Status* status) {
    return Operation("FM_DataVect_AtAsText", status, [&] { return &At(list, index).AsText(); });
}

const FM_FixPt* FM_DataVect_AtAsNumber(const FM_DataVect* list, std::int32_t index, FM_Status* status) {
    return Operation("FM_DataVect_AtAsNumber", status, [&] { return &At(list, index).AsNumber(); });
}

bool FM_DataVect_AtAsBoolean(const FM_DataVect* list, std::int32_t index, FM_Status* status) {
    return Operation("FM_DataVect_AtAsBoolean", status, [&] { return At(list, index).AsBoolean(); });
}

const FM_BinaryData* FM_DataVect_AtAsBinaryData(const FM_DataVect* list, std::int32_t index,
                                                FM_Status* status) {
    return Operation("FM_DataVect_AtAsBinaryData", status, [&] { return &At(list, index).AsContainer(); });
}

void FM_DataVect_PushBack(FM_DataVect* list, const FM_Data* data, FM_Status* status) {
    Operation("FM_DataVect_PushBack", status, [&] { list->values.push_back(*data); });
}
