#include "host/engine/functions.h"

#include <algorithm>
#include <array>

namespace host {
namespace {

using enum BuiltinGroup;
namespace f = functions;

constexpr auto kBuiltins = std::to_array<Builtin>({
    {"abs", kNumber, "Abs ( number )", 1, 1, f::Abs},
    {"case", kLogic, "Case ( test ; result {; test ; result …} {; default} )", 2, -1, f::Case},
    {"char", kText, "Char ( code )", 1, 1, f::Char},
    {"choose", kLogic, "Choose ( number ; result0 {; result1 …} )", 2, -1, f::Choose},
    {"code", kText, "Code ( text )", 1, 1, f::Code},
    {"floor", kNumber, "Floor ( number )", 1, 1, f::Floor},
    {"get(applicationversion)", kGet, "Get ( ApplicationVersion )", 0, 0, f::GetApplicationVersion},
    {"get(currenttimestamp)", kGet, "Get ( CurrentTimestamp )", 0, 0, f::GetCurrentTimestamp},
    {"get(filename)", kGet, "Get ( FileName )", 0, 0, f::GetFileName},
    {"get(filepath)", kGet, "Get ( FilePath )", 0, 0, f::GetFilePath},
    {"get(systemplatform)", kGet, "Get ( SystemPlatform )", 0, 0, f::GetSystemPlatform},
    {"get(temporarypath)", kGet, "Get ( TemporaryPath )", 0, 0, f::GetTemporaryPath},
    {"getasboolean", kLogic, "GetAsBoolean ( value )", 1, 1, f::GetAsBoolean},
    {"getasnumber", kNumber, "GetAsNumber ( value )", 1, 1, f::GetAsNumber},
    {"getastext", kText, "GetAsText ( value )", 1, 1, f::GetAsText},
    {"getvalue", kText, "GetValue ( list ; number )", 2, 2, f::GetValue},
    {"hostclickafter", kHost, "HostClickAfter ( seconds )", 1, 1, f::HostClickAfter},
    {"hostcontainer", kHost, "HostContainer ( {type ; file {; type ; file …}} )", 0, -1, f::HostContainer,
     CountRule::kEven},
    {"hostkeyafter", kHost, "HostKeyAfter ( seconds ; key )", 2, 2, f::HostKeyAfter},
    {"hostpointer", kHost, "HostPointer ( x ; y )", 2, 2, f::HostPointer},
    {"hostpump", kHost, "HostPump ( seconds )", 1, 1, f::HostPump},
    {"hostreference", kHost, "HostReference ( text )", 1, 1, f::HostReference},
    {"hoststream", kHost, "HostStream ( container ; type )", 2, 2, f::HostStream},
    {"hostwindow", kHost, "HostWindow ( left ; top ; right ; bottom )", 4, 4, f::HostWindow},
    {"if", kLogic, "If ( test ; result {; otherwise} )", 2, 3, f::If},
    {"int", kNumber, "Int ( number )", 1, 1, f::Int},
    {"isempty", kLogic, "IsEmpty ( value )", 1, 1, f::IsEmpty},
    {"left", kText, "Left ( text ; count )", 2, 2, f::Left},
    {"length", kText, "Length ( text )", 1, 1, f::Length},
    {"lower", kText, "Lower ( text )", 1, 1, f::Lower},
    {"max", kNumber, "Max ( value {; value …} )", 1, -1, f::Max},
    {"middle", kText, "Middle ( text ; start ; count )", 3, 3, f::Middle},
    {"min", kNumber, "Min ( value {; value …} )", 1, -1, f::Min},
    {"mod", kNumber, "Mod ( number ; divisor )", 2, 2, f::Mod},
    {"patterncount", kText, "PatternCount ( text ; search )", 2, 2, f::PatternCount},
    {"position", kText, "Position ( text ; search ; start ; occurrence )", 4, 4, f::Position},
    {"right", kText, "Right ( text ; count )", 2, 2, f::Right},
    {"round", kNumber, "Round ( number ; places )", 2, 2, f::Round},
    {"substitute", kText, "Substitute ( text ; search ; replacement {; search ; replacement …} )", 3, -1,
     f::Substitute, CountRule::kOdd},
    {"trim", kText, "Trim ( text )", 1, 1, f::Trim},
    {"upper", kText, "Upper ( text )", 1, 1, f::Upper},
    {"valuecount", kText, "ValueCount ( list )", 1, 1, f::ValueCount},
});

static_assert(std::ranges::is_sorted(kBuiltins, {}, &Builtin::key));

} // namespace

std::span<const Builtin> Builtins() {
    return kBuiltins;
}

const Builtin* FindBuiltin(std::string_view key) {
    const auto found = std::ranges::lower_bound(kBuiltins, key, {}, &Builtin::key);
    return found != kBuiltins.end() && found->key == key ? found : nullptr;
}

} // namespace host
