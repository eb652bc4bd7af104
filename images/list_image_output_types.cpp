#include "images/functions.h"
#include "platform/quicktime/graphics_importer.h"
#include "plugin/results.h"

#include <string>

namespace corvane {
namespace {

/// Empty when there is no list.
qt::MemoryHandle ExportTypes() {
    ComponentInstance opened = nullptr;
    if (OpenADefaultComponent(qt::kGraphicsImporter, qt::kAnySubtype, &opened) != noErr) return {};
    const qt::OpenComponent importer(opened);
    QTAtomContainer container = nullptr;
    if (GraphicsImportGetExportImageTypeList(importer.get(), &container) != noErr) return {};
    return qt::MemoryHandle(container);
}

/// The first characters of a child atom's text, behind `separator`; nothing when there is no such atom.
std::string ChildText(QTAtomContainer container, QTAtom parent, OSType type, std::size_t limit,
                      std::string_view separator) {
    const QTAtom child = QTFindChildByIndex(container, parent, type, 1, nullptr);
    if (child == 0) return {};
    const std::span<const std::byte> bytes = QTGetAtomData(container, child);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return std::string(separator).append(text.substr(0, limit));
}

} // namespace

FM_Error ListImageOutputTypes(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters,
                              FM_Data& result) {
    if (!CheckParameterCount(parameters, 0)) {
        const qt::MemoryHandle types = ExportTypes();
        QTAtomContainer container = types.get();
        const std::int32_t count =
            types ? QTCountChildrenOfType(container, kParentAtomIsContainer, qt::Code("expo")) : 0;
        for (std::int32_t index = 1; index <= count; ++index) {
            const QTAtom entry =
                QTFindChildByIndex(container, kParentAtomIsContainer, qt::Code("expo"), index, nullptr);
            AppendResultBufferText(ChildText(container, entry, qt::Code("ftyp"), 4, "") +
                                   ChildText(container, entry, qt::Code("ext "), 3, "|") +
                                   ChildText(container, entry, qt::Code("desc"), 99, "|") + "\r");
        }
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
