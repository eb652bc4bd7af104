#include "sounds/functions.h"

#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "sounds/sound_info.h"
#include "sounds/sound_parameter.h"

namespace corvane {

FM_Error GetSoundInfo(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_GetSoundInfo");
    const qt::CurrentPort port(DrawingPort());
    ClearResult(result);
    if (Host(FM_DataVect_Size, &parameters) != 1)
        return error.Fail(kErrorWrongParameter, "This function requires exactly 1 parameter.");
    qt::OwnedMovie movie;
    const std::int32_t code = OpenSoundParameter(parameters, 0, movie);
    if (code != 0) return error.Fail(code, "Could not get parameter #1 as sound.");
    if (movie == nullptr)
        return error.Fail(kErrorWrongParameter, "The container in argument #1 seems to be empty.");
    const SoundInfo info = DescribeSounds(movie.get());
    if (info.code != 0) return error.Fail(info.code, "Failed to get information for this file.");
    error.SetCode(SetResultText(result, info.text));
    return error.HostCode();
}

} // namespace corvane
