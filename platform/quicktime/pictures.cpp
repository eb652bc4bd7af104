#include "platform/quicktime/pictures.h"

#include <new>

ComponentResult GraphicsImportGetAsPicture(GraphicsImportComponent importer, PicHandle* picture) {
    *picture = nullptr;
    try {
        qt::OwnedPicture made(std::make_unique<QuickDrawPicture>().release());
        const ComponentResult code = qt::DrawImporter(importer, made->pixels);
        if (code == noErr) *picture = made.release();
        return code;
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
}

void KillPicture(PicHandle picture) {
    const std::unique_ptr<QuickDrawPicture> disposed(picture);
}
