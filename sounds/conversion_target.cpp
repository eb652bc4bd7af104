#include "sounds/conversion_target.h"

#include "files/database_folder.h"
#include "files/path_parameter.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"

#include <optional>
#include <string>

namespace corvane {
namespace {

constexpr std::string_view kNotFound = "Could not find input file.";

bool IsUsable(std::int32_t code) {
    return code == 0 || code == kErrorFileNotFound;
}

bool IsBareName(const std::string& text) {
    return text.find_first_of("/\\:\r") == std::string::npos && !text.starts_with('.');
}

ConversionTarget Failed(std::int32_t code, std::string_view message) {
    return {code, message, {}};
}

} // namespace

ConversionTarget ReadConversionTarget(const FM_DataVect& parameters, std::int32_t index) {
    const FM_Data& parameter = *Host(FM_DataVect_At, &parameters, index);
    const Read<std::string> text = ReadTextParameter(parameters, index);
    if (text.code != 0) return Failed(text.code, "Could not get parameter #2 as text.");
    ConversionTarget target;
    XFileSpec database;
    const std::int32_t code = DatabaseFolder(database);
    // A bare name means a file in the database's folder, where there is one.
    if (code != 0 || !IsBareName(text.value)) {
        const std::int32_t resolved = ResolvePathParameter(parameter, target.file);
        if (IsUsable(resolved)) return target;
        if (resolved == kErrorUserCancelled) return Failed(resolved, kNotFound);
    }
    if (code != 0 && code != kNetworkDatabase) return Failed(code, "Could not get database path.");
    std::optional<XFileSpec> folder;
    if (code == 0) {
        database.MoveToParent();
        folder = database;
    }
    const std::int32_t found = target.file.SetFromText(text.value, folder ? &*folder : nullptr);
    return IsUsable(found) ? target : Failed(found, kNotFound);
}

} // namespace corvane
