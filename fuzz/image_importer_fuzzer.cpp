#include "fuzz/fuzz_target.h"
#include "platform/quicktime/data_references.h"
#include "platform/quicktime/graphics_importer.h"

// Any data is recognised or not, and every question about it has an answer. A description means that the
// dimensions are sound.
void Fuzz(std::string_view input) {
    Handle handle = nullptr;
    if (PtrToHand(input.data(), &handle, static_cast<Size>(input.size())) != noErr) return;
    const qt::MemoryHandle data(handle);
    qt::DataReference reference;
    GraphicsImportComponent component = nullptr;
    Require(QTNewDataReferenceFromHandle(handle, reference) == noErr);
    if (GetGraphicsImporterForDataRef(reference.handle.get(), reference.type, &component) != noErr) return;
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
    Require(described == bounded && described == placed);
    if (!described) return;
    Require(bounds.right >= 1 && bounds.bottom >= 1 && bounds.right <= 30'000 && bounds.bottom <= 30'000);
    Require(offset <= input.size() && data_size <= input.size() - offset);
}
