#include "platform/fmwrapper/objects.h"
#include "platform/fmwrapper/operation.h"

using fm::Operation;

FM_QuadChar* FM_QuadChar_Constructor1(FM_Status* status) {
    return Operation("FM_QuadChar_Constructor1", status, [] { return new FM_QuadChar; });
}

FM_QuadChar* FM_QuadChar_Constructor2(char first, char second, char third, char fourth, FM_Status* status) {
    return Operation("FM_QuadChar_Constructor2", status, [&] {
        auto* quad = new FM_QuadChar;
        for (const char character : {first, second, third, fourth})
            quad->code = quad->code << 8 | static_cast<unsigned char>(character);
        return quad;
    });
}

void FM_QuadChar_Delete(FM_QuadChar* code, FM_Status* status) {
    fm::Delete("FM_QuadChar_Delete", code, status);
}

std::uint32_t FM_QuadChar_GetMacType(const FM_QuadChar* code, FM_Status* status) {
    return Operation("FM_QuadChar_GetMacType", status, [&] { return code->code; });
}

void FM_QuadChar_SetMacType(FM_QuadChar* code, std::uint32_t value, FM_Status* status) {
    Operation("FM_QuadChar_SetMacType", status, [&] { code->code = value; });
}
