// Pictures: drawings kept in memory.
#pragma once

#include "platform/quicktime/graphics_importer.h"

struct QuickDrawPicture {
    qt::PixelImage pixels;
};
using PicHandle = QuickDrawPicture*;

/// What the importer draws, as a picture that the caller disposes of. `picture` is null with a code.
ComponentResult GraphicsImportGetAsPicture(GraphicsImportComponent importer, PicHandle* picture);
void KillPicture(PicHandle picture); ///< null is allowed

namespace qt {

struct PictureDisposer {
    void operator()(PicHandle picture) const { KillPicture(picture); }
};

/// Owner of a picture.
using OwnedPicture = std::unique_ptr<QuickDrawPicture, PictureDisposer>;

} // namespace qt
