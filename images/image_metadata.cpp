#include "images/image_metadata.h"

#include "images/exif_dump.h"
#include "images/image_importer.h"
#include "platform/quicktime/type_codes.h"
#include "plugin/errors.h"
#include "plugin/results.h"

#include <algorithm>

namespace corvane {
namespace {

constexpr OSType kTextMark = 0xA9; ///< first byte of the types of readable texts

std::string_view Terminated(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

void AddTextItems(GraphicsImportComponent importer, MetadataText& text) {
    UserData opened = nullptr;
    if (NewUserData(&opened) != noErr) return;
    const qt::OwnedUserData list(opened);
    GraphicsImportGetMetaData(importer, list.get());
    bool headed = false;
    for (OSType type = 0; (type = GetNextUserDataType(list.get(), type)) != 0;) {
        if (type >> 24 != kTextMark) continue;
        const std::string name = qt::TextOfCode(type);
        for (std::int32_t index = 1; index <= CountUserDataType(list.get(), type); ++index) {
            std::string item;
            if (GetUserDataText(list.get(), item, type, index) != noErr) continue;
            if (!headed) text.AddLine("IPTC");
            headed = true;
            text.AddLine("  " + name + ": " + std::string(Terminated(item)));
        }
    }
}

/// False when there is no memory for the data, or it can't be read, and that is reported.
bool AddExif(GraphicsImportComponent importer, MetadataText& text) {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    ComponentResult code = GraphicsImportGetDataOffsetAndSize(importer, &offset, &size);
    const qt::MemoryHandle data(NewHandle(static_cast<Size>(std::min<std::uint64_t>(size, kExifDumpBytes))));
    if (!data) {
        ReportError(kErrorOutOfMemory, "Out of memory");
        return false;
    }
    const std::span<std::byte> bytes = qt::HandleBytes(data.get());
    if (code == noErr) code = GraphicsImportReadData(importer, bytes.data(), offset, bytes.size());
    if (code != noErr) {
        ReportError(code, "Error reading image data");
        return false;
    }
    AddExifDump(bytes, text);
    return true;
}

void ReadMetadata(const FM_Data& parameter) {
    const ImageImporter importer = OpenImageImporter(&parameter);
    if (!importer) return;
    ImageDescription description;
    const ComponentResult code = GraphicsImportGetImageDescription(importer.get(), &description);
    if (code != noErr) return ReportError(code, "Unrecognized image format");
    MetadataText text;
    AddTextItems(importer.get(), text);
    if (description.cType == qt::Code("jpeg") && !AddExif(importer.get(), text)) return;
    SetResultBufferText(text.Utf8());
}

} // namespace

FM_Error ImageMetadata(const FM_Data& parameter, FM_Data& result) {
    ReadMetadata(parameter);
    FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
