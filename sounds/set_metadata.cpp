#include "sounds/functions.h"

#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "sounds/mp3_parameter.h"
#include "sounds/set_tags.h"

#include <string>

namespace corvane {
namespace {

FM_Error FailReading(std::int32_t code, std::int32_t index, CVSError& error) {
    return error.Fail(code, "Could not get parameter #" + std::to_string(index + 1) + " as text.");
}

FM_Error FailSetting(std::int32_t code, CVSError& error) {
    switch (code) {
    case kErrorUnknownTag: return error.Fail(code, "An unknown tag was specified.");
    case kErrorListSyntax: return error.Fail(code, "Syntax error in the information list.");
    default: return error.Fail(code, {});
    }
}

FM_Error SetFromList(TagFile& file, const FM_DataVect& parameters, CVSError& error) {
    const Read<std::string> list = ReadTextParameter(parameters, 1);
    if (list.code != 0) return FailReading(list.code, 1, error);
    const std::int32_t code = list.value.empty() ? SetTag(file, {}, {}) : SetTags(file, list.value);
    return code != 0 ? FailSetting(code, error) : kFM_ErrorNone;
}

FM_Error SetFromPairs(TagFile& file, const FM_DataVect& parameters, std::int32_t count, CVSError& error) {
    for (std::int32_t i = 1; i < count; i += 2) {
        const Read<std::string> name = ReadTextParameter(parameters, i);
        if (name.code != 0) return FailReading(name.code, i, error);
        const Read<std::string> value = ReadTextParameter(parameters, i + 1);
        if (value.code != 0) return FailReading(value.code, i + 1, error);
        const std::int32_t code = SetTag(file, name.value, value.value);
        if (code != 0) return FailSetting(code, error);
    }
    return kFM_ErrorNone;
}

FM_Error SetFromParameters(const FM_DataVect& parameters, CVSError& error) {
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count < 2 || (count > 2 && count % 2 == 0)) {
        return error.Fail(kErrorWrongParameter, "This function requires at least 2 parameters, or 2k+1 "
                                                "parameters where k is a natural number.");
    }
    const Mp3File mp3 = Mp3FileOf(parameters, 0);
    if (mp3.code != 0) return error.Fail(mp3.code, "Could not get parameter #1 as movie.");
    TagFile file;
    if (const std::int32_t code = file.Link(mp3.path); code != 0) {
        return error.Fail(code, code == kUnreadableTag
                                    ? "An unknown exception occured in ID3_Tag::Link method."
                                    : std::string_view());
    }
    const FM_Error failed =
        count == 2 ? SetFromList(file, parameters, error) : SetFromPairs(file, parameters, count, error);
    if (failed != kFM_ErrorNone) return failed;
    error.SetCode(file.Update());
    return error.HostCode();
}

} // namespace

FM_Error SetMetadata(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_SetMetadata");
    ClearResult(result);
    SetFromParameters(parameters, error);
    return kFM_ErrorNone;
}

} // namespace corvane
