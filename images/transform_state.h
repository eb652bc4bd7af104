// The transformation that scripts put together step by step, and Media_TApply uses. It is one for all
// databases and lives as long as the plug-in is started.
#pragma once

#include "platform/quicktime/matrices.h"

namespace corvane {

struct PendingTransform {
    /// A quadrilateral for the image's corners: top left, top right, bottom right, bottom left. A scale of
    /// 100 makes its coordinates percentages of the image's width and height.
    struct Quad {
        double scale = 0.0;
        std::array<double, 8> corners{}; ///< x and y of each
    };

    static constexpr std::int16_t kUnset = -1; ///< as `left`, whatever the other edges are

    MatrixRecord matrix = kIdentityMatrix;
    Rect crop = {.left = kUnset};   ///< part of the source image, in its pixels
    Rect resize = {.left = kUnset}; ///< only right (width) and bottom (height) say something; 0: as the other
    Quad quad;
    bool quad_pending = false; ///< the quad waits to be added to the matrix
};

PendingTransform& CurrentTransform();

/// Forgets all steps.
void ResetTransform();

} // namespace corvane
