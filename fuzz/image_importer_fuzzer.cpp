#include "platform/quicktime/data_references.h"
#include "platform/quicktime/graphics_importer.h"

#include <cstdlib>

// Any data is recognised or not, and every question about it has an answer. A description means that the
// dimensions are sound.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Handle handle = nullptr;
    if (PtrToHand(bytes, &handle, static_cast<Size>(size)) != noErr) return 0;
    const qt::MemoryHandle data(handle);
    qt::DataReference reference;
    GraphicsImportComponent component = nullptr;
    if (QTNewDataReferenceFromHandle(handle, reference) != noErr) std::abort();
    if (GetGraphicsImporterForDataRef(reference.handle.get(), reference.type, &component) != noErr) return 0;
    const qt::OpenComponent importer(component);

    bool valid = false;
    GraphicsImportValidate(component, &valid);
    ImageDescription description;
    const bool described = GraphicsImportGetImageDescription(component, &description) == noErr;
    Rect bounds;
    const bool bounded = GraphicsImportGetNaturalBounds(component, &bounds) == noErr;
    std::uint64_t offset = 0;
    std::uint64_t data_size = 0;
    const bool placed = GraphicsImportGetDataOffsetAndSize(component, &offset, &data_size) == noErr;
    if (described != bounded || described != placed) std::abort();
    if (!described) return 0;
    if (bounds.right < 1 || bounds.bottom < 1 || bounds.right > 30'000 || bounds.bottom > 30'000)
        std::abort();
    if (offset > size || data_size > size - offset) std::abort();
    return 0;
}
