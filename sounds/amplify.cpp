#include "sounds/functions.h"

#include "plugin/drawing_port.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "sounds/amplify_sound.h"
#include "sounds/sound_parameter.h"

namespace corvane {
namespace {

FM_Error AmplifyParameters(const FM_DataVect& parameters, FM_Data& result, CVSError& error) {
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count < 2) return error.Fail(kErrorWrongParameter, "This function requires 2 or 3 parameters.");
    Sound sound;
    const std::int32_t code = OpenSoundParameter(parameters, 0, sound.movie);
    if (code != 0) return error.Fail(code, "Could not get parameter #1 as sound.");
    const Read<float> factor = ReadNumberParameter(parameters, 1);
    if (factor.code != 0) return error.Fail(factor.code, "Could not get parameter #2 as number.");
    const Read<float> limit = count > 2 ? ReadNumberParameter(parameters, 2) : Read<float>{0, 1.0F};
    if (limit.code != 0) return error.Fail(limit.code, "Could not get parameter #3 as number.");
    return AmplifySound(std::move(sound), factor.value, limit.value, result, error);
}

} // namespace

FM_Error Amplify(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_Amplify");
    const qt::CurrentPort port(DrawingPort());
    ClearResult(result);
    AmplifyParameters(parameters, result, error);
    return kFM_ErrorNone;
}

} // namespace corvane
