#include "platform/quicktime/graphics_importer.h"

#include "platform/quicktime/data_references.h"
#include "platform/quicktime/image_codecs/codec.h"

#include <array>
#include <optional>
#include <utility>

namespace qt {
namespace {

class GraphicsImporter final : public Component {
public:
    explicit GraphicsImporter(const ImageCodec& codec) : codec_(codec) {}

    void SetSource(std::unique_ptr<DataSource> source) {
        source_ = std::move(source);
        facts_code_.reset();
    }

    [[nodiscard]] bool Validates() const { return codec_.validates; }

    /// 0 with the facts, which are read once.
    ComponentResult Facts(const ImageFacts*& facts) {
        if (source_ == nullptr) return invalidDataRef;
        if (!facts_code_) {
            facts_ = {};
            facts_code_ = codec_.read_facts(*source_, facts_);
        }
        facts = &facts_;
        return *facts_code_;
    }

private:
    const ImageCodec& codec_;
    std::unique_ptr<DataSource> source_;
    ImageFacts facts_;
    std::optional<ComponentResult> facts_code_;
};

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

} // namespace

std::unique_ptr<Component> OpenGraphicsImporter(OSType file_type) {
    const ImageCodec* codec = file_type == kAnySubtype ? ImageCodecs().front() : FindImageCodec(file_type);
    return codec != nullptr ? std::make_unique<GraphicsImporter>(*codec) : nullptr;
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
    auto made = std::make_unique<qt::GraphicsImporter>(*codec);
    made->SetSource(std::move(opened.source));
    *importer = made.release();
    return noErr;
}

ComponentResult GraphicsImportSetDataHandle(GraphicsImportComponent instance, Handle data) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    if (data == nullptr) return paramErr;
    importer->SetSource(qt::MemorySource(qt::HandleBytes(data)));
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

ComponentResult GraphicsImportGetNaturalBounds(GraphicsImportComponent importer, Rect* bounds) {
    return qt::WithFacts(importer, [&](const qt::ImageFacts& facts) {
        *bounds = {0, 0, facts.description.height, facts.description.width};
    });
}
