// The functions that put the pending transformation together: Media_TRotate, TSkew, TScale, TCrop, TResize,
// TQuad and TClear. Each gives the empty text.
#include "images/functions.h"
#include "images/number_parameters.h"
#include "images/transform_state.h"
#include "plugin/results.h"

namespace corvane {
namespace {

Fixed ReadFixed(const FM_DataVect& parameters, std::int32_t index) {
    return X2Fix(ReadNumber(parameters, index));
}

/// Of 32 bits the low 16.
std::int16_t ReadShort(const FM_DataVect& parameters, std::int32_t index) {
    return static_cast<std::int16_t>(ReadInteger(parameters, index));
}

} // namespace

FM_Error TRotate(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!CheckParameterCount(parameters, 1)) {
        RotateMatrix(&CurrentTransform().matrix, ReadFixed(parameters, 0), 0, 0);
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

FM_Error TSkew(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!CheckParameterCount(parameters, 2)) {
        SkewMatrix(&CurrentTransform().matrix, ReadFixed(parameters, 0), ReadFixed(parameters, 1), 0, 0);
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

FM_Error TScale(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!CheckParameterCount(parameters, 2)) {
        ScaleMatrix(&CurrentTransform().matrix, ReadFixed(parameters, 0), ReadFixed(parameters, 1), 0, 0);
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

FM_Error TCrop(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!CheckParameterCount(parameters, 4)) {
        CurrentTransform().crop = {.top = ReadShort(parameters, 1),
                                   .left = ReadShort(parameters, 0),
                                   .bottom = ReadShort(parameters, 3),
                                   .right = ReadShort(parameters, 2)};
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

FM_Error TResize(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!CheckParameterCount(parameters, 2)) {
        CurrentTransform().resize = {.bottom = ReadShort(parameters, 1), .right = ReadShort(parameters, 0)};
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

FM_Error TQuad(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!CheckParameterCount(parameters, 9)) {
        PendingTransform::Quad quad{.scale = ReadNumber(parameters, 0)};
        for (std::size_t i = 0; i < quad.corners.size(); ++i) {
            quad.corners[i] = ReadNumber(parameters, static_cast<std::int32_t>(i) + 1);
        }
        ResetTransform();
        CurrentTransform().quad = quad;
        CurrentTransform().quad_pending = true;
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

FM_Error TClear(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data& result) {
    ResetTransform();
    FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
