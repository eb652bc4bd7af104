#include "platform/quicktime/graphics_importer.h"

#include "platform/quicktime/graphics_importer_state.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace qt {
namespace {

/// Hands the importer's facts to `take`.
template <class Take>
ComponentResult WithFacts(GraphicsImportComponent instance, Take take) {
    auto* importer = dynamic_cast<GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    const ImageFacts* facts = nullptr;
    const ComponentResult code = importer->Facts(facts);
    if (code == noErr) take(*facts);
    return code;
}

OSErr CopyReference(Handle handle, OSType type, DataReference& copy) {
    Handle bytes = nullptr;
    const OSErr code = PtrToHand(*handle, &bytes, GetHandleSize(handle));
    copy = {MemoryHandle(bytes), type};
    return code;
}

} // namespace

std::unique_ptr<Component> OpenGraphicsImporter(OSType file_type) {
    const ImageCodec* codec = file_type == kAnySubtype ? ImageCodecs().front() : FindImageCodec(file_type);
    return codec != nullptr ? std::make_unique<GraphicsImporter>(*codec) : nullptr;
}

OSType FileTypeOf(GraphicsImportComponent instance) {
    const auto* importer = dynamic_cast<GraphicsImporter*>(instance);
    return importer != nullptr ? importer->codec().types.front() : 0;
}

} // namespace qt

OSErr GetGraphicsImporterForDataRef(Handle data_reference, OSType type, GraphicsImportComponent* importer) {
    *importer = nullptr;
    qt::OpenedSource opened = qt::OpenDataReference(data_reference, type);
    if (opened.code != noErr) return opened.code;
    std::array<std::byte, qt::kSniffedBytes> head;
    const std::size_t size = opened.source->Read(0, head);
    const qt::ImageCodec* codec = qt::FindImageCodec({head.data(), size});
    if (codec == nullptr) return badComponentType;
    qt::DataReference reference;
    if (const OSErr code = qt::CopyReference(data_reference, type, reference); code != noErr) return code;
    auto made = std::make_unique<qt::GraphicsImporter>(*codec);
    made->SetSource(std::move(opened.source), std::move(reference));
    *importer = made.release();
    return noErr;
}

ComponentResult GraphicsImportSetDataHandle(GraphicsImportComponent instance, Handle data) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    if (data == nullptr) return paramErr;
    qt::DataReference reference;
    if (const OSErr code = QTNewDataReferenceFromHandle(data, reference); code != noErr) return code;
    importer->SetSource(qt::MemorySource(qt::HandleBytes(data)), std::move(reference));
    return noErr;
}

ComponentResult GraphicsImportValidate(GraphicsImportComponent instance, bool* valid) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    if (!importer->Validates()) return kBadComponentSelector;
    const qt::ImageFacts* facts = nullptr;
    const ComponentResult code = importer->Facts(facts);
    *valid = code == noErr;
    return code == codecBadDataErr || code == codecSizeErr ? ComponentResult{noErr} : code;
}

ComponentResult GraphicsImportGetImageDescription(GraphicsImportComponent importer,
                                                  ImageDescription* description) {
    return qt::WithFacts(importer, [&](const qt::ImageFacts& facts) { *description = facts.description; });
}

ComponentResult GraphicsImportGetImageCount(GraphicsImportComponent importer, std::uint32_t* count) {
    return qt::WithFacts(importer, [&](const qt::ImageFacts& facts) { *count = facts.image_count; });
}

ComponentResult GraphicsImportGetDataOffsetAndSize(GraphicsImportComponent importer, std::uint64_t* offset,
                                                   std::uint64_t* size) {
    return qt::WithFacts(importer, [&](const qt::ImageFacts& facts) {
        *offset = facts.data_offset;
        *size = facts.data_size;
    });
}

ComponentResult GraphicsImportReadData(GraphicsImportComponent instance, void* bytes, std::uint64_t offset,
                                       std::uint64_t size) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    if (importer->source() == nullptr) return invalidDataRef;
    const std::size_t count = importer->source()->Read(offset, {static_cast<std::byte*>(bytes), size});
    return count == size ? noErr : eofErr;
}

ComponentResult GraphicsImportGetDataFile(GraphicsImportComponent instance, std::u16string* path) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    const qt::DataReference& reference = importer->reference();
    if (reference.type != qt::kAliasDataHandler) return invalidDataRef;
    const std::span<const std::byte> bytes = qt::HandleBytes(reference.handle.get());
    path->resize(bytes.size() / sizeof(char16_t));
    std::ranges::copy(bytes.first(path->size() * sizeof(char16_t)),
                      std::as_writable_bytes(std::span(*path)).begin());
    return noErr;
}

ComponentResult GraphicsImportGetDataReference(GraphicsImportComponent instance,
                                               qt::DataReference* reference) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    const qt::DataReference& own = importer->reference();
    if (!own.handle) return invalidDataRef;
    return qt::CopyReference(own.handle.get(), own.type, *reference);
}

ComponentResult GraphicsImportGetMetaData(GraphicsImportComponent instance, UserData list) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    if (importer->source() == nullptr) return invalidDataRef;
    if (importer->codec().read_metadata == nullptr) return noErr;
    std::vector<qt::MetadataItem> items;
    const ComponentResult code = importer->codec().read_metadata(*importer->source(), items);
    if (code != noErr) return code;
    for (const qt::MetadataItem& item : items) {
        if (const OSErr added = AddUserDataText(list, item.text, item.type); added != noErr) return added;
    }
    return noErr;
}
