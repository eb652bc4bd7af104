#include "platform/fmwrapper/objects.h"
#include "platform/fmwrapper/operation.h"

FM_Locale* FM_Locale_Constructor1(std::int32_t locale_type, FM_Status* status) {
    return fm::Operation("FM_Locale_Constructor1", status, [&] {
        auto* locale = new FM_Locale;
        locale->type = locale_type;
        return locale;
    });
}

void FM_Locale_Delete(FM_Locale* locale, FM_Status* status) {
    fm::Delete("FM_Locale_Delete", locale, status);
}
