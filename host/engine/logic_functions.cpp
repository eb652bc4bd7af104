#include "host/engine/functions.h"

namespace host::functions {

FM_Data If(const Arguments& arguments) {
    if (arguments.Boolean(0)) return arguments.Value(1);
    return arguments.Count() > 2 ? arguments.Value(2) : FM_Data();
}

FM_Data Case(const Arguments& arguments) {
    for (std::size_t i = 0; i + 1 < arguments.Count(); i += 2)
        if (arguments.Boolean(i)) return arguments.Value(i + 1);
    return arguments.Count() % 2 == 1 ? arguments.Value(arguments.Count() - 1) : FM_Data();
}

FM_Data Choose(const Arguments& arguments) {
    const std::int64_t choice = arguments.Integer(0);
    if (choice < 0 || static_cast<std::uint64_t>(choice) >= arguments.Count() - 1) return {};
    return arguments.Value(static_cast<std::size_t>(choice) + 1);
}

FM_Data IsEmpty(const Arguments& arguments) {
    return NumberOf(arguments.Value(0).IsEmpty() ? 1 : 0);
}

FM_Data GetAsBoolean(const Arguments& arguments) {
    return NumberOf(arguments.Boolean(0) ? 1 : 0);
}

} // namespace host::functions
