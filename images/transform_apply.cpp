#include "images/cv_image.h"
#include "images/functions.h"
#include "images/image_importer.h"
#include "images/transform_state.h"
#include "platform/quicktime/graphics_exporter.h"
#include "plugin/results.h"

#include <cmath>

namespace corvane {
namespace {

bool IsSet(const Rect& rectangle) {
    return rectangle.left != PendingTransform::kUnset;
}

/// Adds the pending quad to the matrix, for an image of that size.
OSErr AddQuad(PendingTransform& pending, const Rect& image) {
    pending.quad_pending = false;
    const auto& [scale, corners] = pending.quad;
    if (scale == 0.0) return paramErr;
    const double width = image.right;
    const double height = image.bottom;
    const FixedPoint source[4] = {
        {0, 0}, {X2Fix(width), 0}, {X2Fix(width), X2Fix(height)}, {0, X2Fix(height)}};
    FixedPoint destination[4];
    for (std::size_t i = 0; i < 4; ++i) {
        destination[i] = {X2Fix(width / scale * corners[2 * i]), X2Fix(height / scale * corners[2 * i + 1])};
    }
    MatrixRecord map;
    const OSErr code = QuadToQuadMatrix(source, destination, &map);
    if (code == noErr) ConcatMatrix(&map, &pending.matrix);
    return code;
}

/// Adds the scaling that brings the part to the size that was asked for.
void AddResize(PendingTransform& pending, const Rect& part) {
    const auto factor = [](std::int16_t wanted, int length) {
        return length != 0 ? static_cast<float>(wanted) / static_cast<float>(length) : 0.0F;
    };
    float across = factor(pending.resize.right, part.right - part.left);
    float down = factor(pending.resize.bottom, part.bottom - part.top);
    if (pending.resize.bottom == 0) {
        down = across;
    } else if (pending.resize.right == 0) {
        across = down;
    }
    const auto fixed = [](float value) { return X2Fix(std::trunc(value * 65'536.0) / 65'536.0); }; // cut
    ScaleMatrix(&pending.matrix, fixed(across), fixed(down), 0, 0);
}

/// Brings the pending steps to the importer. The matrix keeps the quad and the scaling; that they stay when
/// drawing fails is meant.
ComponentResult SetTransform(PendingTransform& pending, GraphicsImportComponent importer) {
    Rect image;
    if (const auto code = GraphicsImportGetNaturalBounds(importer, &image); code != noErr) return code;
    const bool crops = IsSet(pending.crop);
    const auto crop_code =
        crops ? GraphicsImportSetSourceRect(importer, &pending.crop) : ComponentResult{noErr};
    const ComponentResult quad_code = pending.quad_pending ? AddQuad(pending, image) : noErr;
    if (IsSet(pending.resize)) AddResize(pending, crops ? pending.crop : image);
    if (crop_code != noErr) return crop_code;
    if (quad_code != noErr) return quad_code;
    return GraphicsImportSetMatrix(importer, &pending.matrix);
}

/// The transformed image as a picture file. Null when there is none and that is reported.
qt::MemoryHandle EncodeTransformed(const FM_Data* parameter) {
    const ImageImporter importer = OpenImageImporter(parameter);
    if (!importer) return {};
    const qt::OpenComponent exporter = OpenCvImageExporter();
    if (exporter == nullptr) return {};
    if (const auto code = SetTransform(CurrentTransform(), importer.get()); code != noErr) {
        ReportNoCvImage(code);
        return {};
    }
    GraphicsExportSetInputGraphicsImporter(exporter.get(), importer.get());
    return EncodeCvImage(exporter.get());
}

} // namespace

FM_Error TApply(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    qt::MemoryHandle picture;
    if (!CheckParameterCount(parameters, 1))
        picture = EncodeTransformed(Host(FM_DataVect_At, &parameters, 0));
    if (picture) {
        SetCvImageResult(std::move(picture), result);
    } else {
        FinishResult(result);
    }
    return kFM_ErrorNone;
}

} // namespace corvane
