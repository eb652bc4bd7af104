#include "images/functions.h"
#include "images/image_importer.h"
#include "images/image_settings.h"
#include "images/number_parameters.h"
#include "images/preview.h"
#include "images/streams.h"
#include "platform/quicktime/graphics_exporter.h"
#include "platform/quicktime/matrices.h"
#include "plugin/results.h"

#include <algorithm>
#include <array>

namespace corvane {
namespace {

constexpr std::int32_t kUnset = -1;
constexpr std::int32_t kPackBitsMethod = 32773;

ConversionSettings ReadSettings(const FM_DataVect& parameters) {
    return {ReadInteger(parameters, 2), ReadNumber(parameters, 3),  ReadNumber(parameters, 4),
            ReadInteger(parameters, 5), ReadInteger(parameters, 6), ReadInteger(parameters, 7),
            ReadInteger(parameters, 8), ReadInteger(parameters, 9), ReadInteger(parameters, 10)};
}

/// Hands the settings on. What the encoder refuses stays at its own choice.
void Apply(const ConversionSettings& settings, GraphicsExportComponent exporter,
           GraphicsImportComponent importer) {
    if (settings.depth != kUnset) GraphicsExportSetDepth(exporter, settings.depth);
    if (settings.horizontal_dpi != kUnset)
        GraphicsExportSetResolution(exporter, X2Fix(settings.horizontal_dpi), X2Fix(settings.vertical_dpi));
    if (settings.target_bytes != kUnset) {
        GraphicsExportSetTargetDataSize(exporter, static_cast<std::uint32_t>(settings.target_bytes));
    } else if (settings.quality != kUnset) {
        GraphicsExportSetCompressionQuality(exporter, settings.quality);
    }
    if (settings.image_index != kUnset)
        GraphicsImportSetImageIndex(importer, static_cast<std::uint32_t>(settings.image_index));
    if (settings.transcode != kUnset) GraphicsExportSetDontRecompress(exporter, settings.transcode != 0);
    if (settings.pack_bits != kUnset)
        GraphicsExportSetCompressionMethod(exporter, settings.pack_bits != 0 ? kPackBitsMethod : 1);
    if (settings.interlace != kUnset)
        GraphicsExportSetCompressionMethod(exporter, settings.interlace != 0 ? 1 : 0);
}

/// An encoded image, as in a file of its type.
struct Encoded {
    std::uint32_t type = 0;
    qt::MemoryHandle data; ///< null: there is none, and that is reported
    Rect source;           ///< the part of the source image that it shows
};

Encoded Encode(const FM_Data* parameter, std::uint32_t type) {
    const ImageImporter importer = OpenImageImporter(parameter);
    if (!importer) return {};
    ImageDescription description;
    if (type == 0 && GraphicsImportGetImageDescription(importer.get(), &description) == noErr)
        type = description.cType;
    ComponentInstance opened = nullptr;
    OSErr code = OpenADefaultComponent(qt::kGraphicsExporter, type, &opened);
    const qt::OpenComponent exporter(opened);
    if (code != noErr) {
        ReportError(code, "Could not find QT exporter for specified image type");
        return {};
    }
    Encoded encoded{type, qt::MemoryHandle(NewHandle(0)), {}};
    GraphicsExportSetInputGraphicsImporter(exporter.get(), importer.get());
    GraphicsExportSetOutputHandle(exporter.get(), encoded.data.get());
    Apply(CurrentConversionSettings(), exporter.get(), importer.get());
    GraphicsImportGetSourceRect(importer.get(), &encoded.source);
    std::uint64_t size = 0;
    const ComponentResult export_code = GraphicsExportDoExport(exporter.get(), &size);
    if (export_code == noErr) return encoded;
    ReportError(export_code, "Conversion failed");
    return {};
}

void SetResult(const Encoded& encoded, FM_Data& result) {
    constexpr std::array<std::uint32_t, 4> kShownByHosts = {FourCC("JPEG"), FourCC("BMPf"), FourCC("PNGf"),
                                                            FourCC("TIFF")};
    const bool shown = std::ranges::find(kShownByHosts, encoded.type) != kShownByHosts.end();
    const std::optional<Preview> preview =
        shown ? std::nullopt : MakePreviewOf(encoded.type, encoded.data.get());
    const bool is_picture = encoded.type == FourCC("PICT") || encoded.type == FourCC("pict");
    const BinaryData container(Host(FM_BinaryData_Constructor1));
    const std::span<const std::byte> bytes = qt::HandleBytes(encoded.data.get());
    const std::size_t skipped = is_picture ? std::min<std::size_t>(kPictureHeaderSize, bytes.size()) : 0;
    AddStream(container.get(), encoded.type, bytes.subspan(skipped));
    if (shown) {
        AddSizeStream(container.get(), encoded.source.right - encoded.source.left,
                      encoded.source.bottom - encoded.source.top);
    } else if (preview) {
        AddPreview(container.get(), *preview);
    }
    SetContainerResult(result, container.get());
}

/// True when the result is set; else the result buffer holds an error.
bool Convert(const FM_DataVect& parameters, FM_Data& result) {
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count != 2 && count != 11) {
        ReportError(kErrorParameterCount, "");
        return false;
    }
    const std::optional<std::uint32_t> type = ParseImageTypeCode(Host(FM_DataVect_At, &parameters, 1));
    if (!type) return false;
    if (count == 11) CurrentConversionSettings() = ReadSettings(parameters);
    const Encoded encoded = Encode(Host(FM_DataVect_At, &parameters, 0), *type);
    if (!encoded.data) return false;
    SetResult(encoded, result);
    return true;
}

} // namespace

FM_Error ConvertImage(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!Convert(parameters, result)) FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
