#include "images/image_metadata.h"
#include "plugin/errors.h"
#include "plugin/functions.h"
#include "plugin/host_data.h"

namespace corvane {

// Tags of MP3 files are not read yet: every parameter is taken for an image.
FM_Error GetMetadata(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_GetMetadata");
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count < 1 || count > 2) {
        ClearResult(result);
        return error.Fail(kErrorWrongParameter, "This function requires 1 or 2 parameters.");
    }
    error.Reset();
    return ImageMetadata(*Host(FM_DataVect_At, &parameters, 0), result);
}

} // namespace corvane
