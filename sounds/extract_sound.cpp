#include "sounds/functions.h"

#include "plugin/drawing_port.h"
#include "plugin/host_data.h"
#include "sounds/extract_span.h"
#include "sounds/sound_parameter.h"
#include "sounds/sound_results.h"
#include "sounds/value_parameters.h"

namespace corvane {
namespace {

FM_Error ExtractParameters(const FM_DataVect& parameters, FM_Data& result, CVSError& error) {
    if (Host(FM_DataVect_Size, &parameters) != 3)
        return error.Fail(kErrorWrongParameter, "This function expects 3 parameters.");
    qt::OwnedMovie movie;
    std::int32_t code = OpenSoundParameter(parameters, 0, movie);
    if (code != 0) return error.Fail(code, "Could not get parameter #1 as sound.");
    const Read<FadeTime> begin = ReadTimeParameter(parameters, 1, TimeSign::kRefused);
    if (begin.code != 0) return error.Fail(begin.code, "Could not get parameter #2 as time.");
    const Read<FadeTime> end = ReadTimeParameter(parameters, 2, TimeSign::kRefused);
    if (end.code != 0) return error.Fail(end.code, "Could not get parameter #3 as time.");
    qt::OwnedMovie extract;
    code = ExtractSpan(movie.get(), begin.value.seconds, end.value.seconds, extract);
    if (code != 0) return error.Fail(code, "Could not extract sound.");
    return PutWaveResult(result, std::move(extract),
                         {"Could not get reference to temporary file.", "Failed to export sound as WAVE.",
                          "Failed to open extracted result.", "Failed to set result."},
                         error);
}

} // namespace

FM_Error ExtractSound(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_ExtractSound");
    const qt::CurrentPort port(DrawingPort());
    if (ExtractParameters(parameters, result, error) != kFM_ErrorNone) ClearResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
