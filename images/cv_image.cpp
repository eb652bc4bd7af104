#include "images/cv_image.h"

#include "images/preview.h"
#include "images/streams.h"
#include "platform/quicktime/graphics_exporter.h"
#include "plugin/results.h"

#include <algorithm>
#include <array>

namespace corvane {
namespace {

constexpr std::uint32_t kPictureType = FourCC("PICT");
constexpr std::array<std::byte, 4> kPrefix = {std::byte{'P'}, std::byte{'I'}, std::byte{'C'}, std::byte{'T'}};

} // namespace

qt::OpenComponent OpenCvImageExporter() {
    constexpr std::int32_t kLossless = 1024;
    constexpr std::int32_t kDepth = 24;
    ComponentInstance opened = nullptr;
    const OSErr code = OpenADefaultComponent(qt::kGraphicsExporter, kPictureType, &opened);
    qt::OpenComponent exporter(opened);
    if (code != noErr) {
        ReportError(code, "Could not find QT exporter for CV image type");
        return nullptr;
    }
    GraphicsExportSetDontRecompress(opened, false);
    GraphicsExportSetCompressionQuality(opened, kLossless);
    GraphicsExportSetDepth(opened, kDepth);
    return exporter;
}

qt::MemoryHandle EncodeCvImage(qt::Component* exporter) {
    qt::MemoryHandle picture(NewHandle(0));
    GraphicsExportSetOutputHandle(exporter, picture.get());
    std::uint64_t size = 0;
    const ComponentResult code = GraphicsExportDoExport(exporter, &size);
    if (code == noErr) return picture;
    ReportNoCvImage(code);
    return {};
}

void SetCvImageResult(qt::MemoryHandle picture, FM_Data& result) {
    const std::optional<Preview> preview = MakePreviewOf(kPictureType, picture.get());
    const BinaryData container(Host(FM_BinaryData_Constructor1));
    // The prefix takes the place of the header's end, so that the picture need not move.
    const auto stream = qt::HandleBytes(picture.get()).subspan(kPictureHeaderSize - kPrefix.size());
    std::ranges::copy(kPrefix, stream.begin());
    AddStream(container.get(), FourCC("CVIM"), stream);
    if (preview) AddPreview(container.get(), *preview);
    SetContainerResult(result, container.get());
}

void ReportNoCvImage(std::int32_t code) {
    ReportError(code, "Conversion to CV image failed");
}

} // namespace corvane
