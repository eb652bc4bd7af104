#include "files/references.h"
#include "images/functions.h"
#include "images/image_importer.h"
#include "images/preview.h"
#include "images/streams.h"
#include "plugin/results.h"

namespace corvane {
namespace {

constexpr std::uint32_t kJpegType = FourCC("JPEG");
constexpr std::uint32_t kPictureType = FourCC("PICT");
constexpr std::uint32_t kWrappingType = FourCC("qtif");

/// The stream type of a compressor type: its letters in upper case, but for two that have names of their own.
std::uint32_t StreamTypeOf(OSType compressor) {
    std::uint32_t type = 0;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const std::uint32_t character = compressor >> shift & 0xFF;
        type = type << 8 | (character >= 'a' && character <= 'z' ? character - 'a' + 'A' : character);
    }
    if (type == FourCC("QDRW")) return kPictureType;
    if (type == FourCC("GIF ")) return FourCC("GIFf");
    return type;
}

/// True when the result is set; else a failure is reported.
bool InsertReference(GraphicsImportComponent importer, const ImageDescription& description, FM_Data& result) {
    constexpr std::string_view kNoFile = "Source must be a file to import by reference";
    std::u16string path;
    const ComponentResult code = GraphicsImportGetDataFile(importer, &path);
    if (code != noErr) {
        ReportError(code, kNoFile);
        return false;
    }
    XFileSpec file;
    std::int32_t reference_code = file.SetFromNativePathW(path);
    if (reference_code == 0) {
        reference_code =
            PutFileReferenceResult(result, file, "image", static_cast<std::uint16_t>(description.width),
                                   static_cast<std::uint16_t>(description.height));
    }
    if (reference_code != 0) ReportError(reference_code, kNoFile);
    return reference_code == 0;
}

/// What becomes the image stream: a part of the source's data.
struct Stored {
    std::uint32_t type = 0;
    std::uint64_t offset = 0;
    std::uint64_t size = UINT64_MAX; ///< or what there is
};

bool HasImporter(std::uint32_t type) {
    ComponentInstance opened = nullptr;
    const OSErr code = OpenADefaultComponent(qt::kGraphicsImporter, type, &opened);
    const qt::OpenComponent importer(opened);
    return code == noErr;
}

/// The whole data, without the header that a picture file may have. Of a file that wraps data of another
/// format: what is wrapped, when that can be read for itself under its type, and else the wrapping file under
/// its own type, as the type of what is wrapped would not tell how to read it.
Stored FindStored(GraphicsImportComponent importer, const ImageDescription& description) {
    Stored part{StreamTypeOf(description.cType)};
    const bool is_wrapped = qt::FileTypeOf(importer) == kWrappingType;
    if (!is_wrapped && part.type != kPictureType) return part;
    const ComponentResult code = GraphicsImportGetDataOffsetAndSize(importer, &part.offset, &part.size);
    if (!is_wrapped) return part;
    return code == noErr && HasImporter(part.type) ? part : Stored{kWrappingType};
}

/// True when the result is set; else a failure is reported.
bool InsertContainer(GraphicsImportComponent importer, const ImageDescription& description, FM_Data& result) {
    constexpr std::string_view kNoData = "Error retrieving web image";
    qt::DataReference reference;
    ComponentResult code = GraphicsImportGetDataReference(importer, &reference);
    qt::OpenedSource data;
    if (code == noErr) {
        data = qt::OpenDataReference(reference.handle.get(), reference.type);
        code = data.code;
    }
    if (code != noErr || data.source->GetSize() == 0) {
        ReportError(code, kNoData);
        return false;
    }
    const Stored stored = FindStored(importer, description);
    const bool shown_by_hosts = stored.type == kJpegType || stored.type == kPictureType;
    const Preview preview = shown_by_hosts ? Preview() : MakePreview(importer);
    const BinaryData container(Host(FM_BinaryData_Constructor1));
    code = AddStreamFrom(container.get(), stored.type, *data.source, stored.offset, stored.size);
    if (code != noErr) {
        ReportError(code, kNoData);
        return false;
    }
    if (shown_by_hosts) {
        AddSizeStream(container.get(), description.width, description.height);
    } else {
        AddPreview(container.get(), preview);
    }
    SetContainerResult(result, container.get());
    return true;
}

/// True when the result is set; else the result buffer holds an error.
bool Insert(const FM_DataVect& parameters, FM_Data& result) {
    if (CheckParameterCount(parameters, 2)) return false;
    const bool by_reference = Host(FM_DataVect_AtAsBoolean, &parameters, 1);
    const ImageImporter importer = OpenImageImporter(Host(FM_DataVect_At, &parameters, 0));
    if (!importer) return false;
    ImageDescription description;
    const ComponentResult code = GraphicsImportGetImageDescription(importer.get(), &description);
    if (code != noErr) {
        ReportError(code, "Unrecognized image format");
        return false;
    }
    return by_reference ? InsertReference(importer.get(), description, result)
                        : InsertContainer(importer.get(), description, result);
}

} // namespace

FM_Error InsertImage(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!Insert(parameters, result)) FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
