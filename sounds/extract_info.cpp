#include "sounds/functions.h"

#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "sounds/information_list.h"

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {
namespace {

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Value of one line, or the number of lines for line 0. `digits` may be empty, which is 0.
std::optional<std::string> ExtractLine(std::string_view list, std::string_view digits, CVSError& error) {
    std::int32_t number = 0;
    if (!digits.empty() &&
        std::from_chars(digits.data(), digits.data() + digits.size(), number).ec != std::errc()) {
        error.SetCode(kErrorWrongParameter);
        return std::nullopt;
    }
    if (number == 0) return std::to_string(CountInformationLines(list));
    const FoundInformation found = FindInformationLine(list, static_cast<std::uint32_t>(number));
    if (found.outcome == InformationSearch::kFound) return std::string(found.value);
    error.SetCode(kErrorUnknown);
    error.AppendMessage("Could not copy indexed line.");
    return std::nullopt;
}

std::optional<std::string> ExtractKey(std::string_view list, std::string_view path, CVSError& error) {
    const FoundInformation found = FindInformationKey(list, path);
    switch (found.outcome) {
    case InformationSearch::kFound: return std::string(found.value);
    case InformationSearch::kNoKey:
        error.SetCode(kErrorUnknown);
        error.SetMessage("Wrong line or key.");
        break;
    case InformationSearch::kEmptyKey:
        error.SetCode(kErrorUnknown2);
        error.SetMessage("Wrong key.");
        break;
    case InformationSearch::kMissing:
        error.SetCode(kErrorFileNotFound);
        error.SetMessage("Requested key was not found.");
        break;
    }
    return std::nullopt;
}

} // namespace

FM_Error ExtractInfo(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_ExtractInfo");
    const qt::CurrentPort port(DrawingPort());
    ClearResult(result);
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count == 0 || count > 2)
        return error.Fail(kErrorWrongParameter, "This function requires 1 or 2 arguments.");

    const Read<std::string> list = ReadTextParameter(parameters, 0);
    if (list.code != 0) return error.Fail(list.code, "Could not get parameter #1 as text.");
    const Read<std::string> key = count == 2 ? ReadTextParameter(parameters, 1) : Read<std::string>();
    if (key.code != 0) return error.Fail(key.code, "Could not get parameter #2 as text.");

    const std::string_view trimmed = Trimmed(key.value);
    const bool is_number = trimmed.find_first_not_of("0123456789") == std::string_view::npos;
    const std::optional<std::string> value =
        is_number ? ExtractLine(list.value, trimmed, error) : ExtractKey(list.value, key.value, error);
    if (value) error.SetCode(SetResultText(result, *value));
    return error.HostCode();
}

} // namespace corvane
