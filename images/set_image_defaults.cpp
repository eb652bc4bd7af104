#include "images/functions.h"
#include "images/image_settings.h"
#include "images/number_parameters.h"
#include "plugin/host_data.h"
#include "plugin/results.h"

#include <algorithm>

namespace corvane {

FM_Error SetImageDefaults(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!CheckParameterCount(parameters, 2)) {
        const std::int32_t quality = ReadInteger(parameters, 0);
        const bool mark = Host(FM_DataVect_AtAsBoolean, &parameters, 1);
        CurrentPreviewSettings() = {std::clamp(quality, -1, 1024), mark};
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
