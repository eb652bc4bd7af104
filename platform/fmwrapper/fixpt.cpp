#include "platform/fmwrapper/objects.h"
#include "platform/fmwrapper/operation.h"

#include <algorithm>
#include <limits>

using fm::Operation;

FM_FixPt* FM_FixPt_Constructor1(FM_Status* status) {
    return Operation("FM_FixPt_Constructor1", status, [] { return new FM_FixPt; });
}

void FM_FixPt_Delete(FM_FixPt* number, FM_Status* status) {
    fm::Delete("FM_FixPt_Delete", number, status);
}

std::int32_t FM_FixPt_AsLong(const FM_FixPt* number, FM_Status* status) {
    return Operation("FM_FixPt_AsLong", status, [&] {
        using Limits = std::numeric_limits<std::int32_t>;
        return static_cast<std::int32_t>(
            std::clamp<std::int64_t>(number->value.ToInteger(), Limits::min(), Limits::max()));
    });
}

double FM_FixPt_AsFloat(const FM_FixPt* number, FM_Status* status) {
    return Operation("FM_FixPt_AsFloat", status, [&] { return number->value.ToDouble(); });
}

bool FM_FixPt_AsBool(const FM_FixPt* number, FM_Status* status) {
    return Operation("FM_FixPt_AsBool", status, [&] { return !number->value.IsZero(); });
}

void FM_FixPt_AssignDouble(FM_FixPt* number, double value, FM_Status* status) {
    Operation("FM_FixPt_AssignDouble", status, [&] {
        const auto decimal = fm::Decimal::FromDouble(value);
        if (!decimal) throw fm::Refused();
        number->value = *decimal;
    });
}
