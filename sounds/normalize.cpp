#include "sounds/functions.h"

#include "plugin/host_data.h"
#include "sounds/amplify_samples.h"
#include "sounds/amplify_sound.h"
#include "sounds/sound_parameter.h"

namespace corvane {

FM_Error Normalize(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_Normalize");
    if (Host(FM_DataVect_Size, &parameters) != 1) {
        error.Fail(kErrorWrongParameter, "This function requires 1 parameter.");
        return kFM_ErrorNone;
    }
    ClearResult(result);
    Sound sound;
    const std::int32_t code = OpenSoundParameter(parameters, 0, sound.movie);
    if (code != 0) {
        error.Fail(code, "Could not get parameter #1 as sound.");
        return kFM_ErrorNone;
    }
    AmplifySound(std::move(sound), 1.0F, kNormaliseLimit, result, error);
    return kFM_ErrorNone;
}

} // namespace corvane
