#include "images/pixel_buffer.h"
#include "images/streams.h"
#include "platform/quicktime/graphics_exporter.h"
#include "plugin/errors.h"
#include "plugin/results.h"

namespace corvane {
namespace {

constexpr std::int32_t kHighestQuality = 1023;

/// A port over the buffer's own memory.
std::int32_t WrapPixels(IPixelBuffer& buffer, qt::OwnedGWorld& port) {
    const Rect bounds = {0, 0, static_cast<std::int16_t>(buffer.GetHeight()),
                         static_cast<std::int16_t>(buffer.GetWidth())};
    GWorldPtr made = nullptr;
    const OSErr code =
        QTNewGWorldFromPtr(&made, k32RGBAPixelFormat, bounds, buffer.GetBaseAddress(), buffer.GetRowBytes());
    port.reset(made);
    return code;
}

std::int32_t Encode(GWorldPtr port, Handle jpeg) {
    ComponentInstance opened = nullptr;
    const OSErr code = OpenADefaultComponent(qt::kGraphicsExporter, qt::Code("JPEG"), &opened);
    const qt::OpenComponent exporter(opened);
    if (code != noErr) return code;
    GraphicsExportSetInputGWorld(opened, port);
    GraphicsExportSetOutputHandle(opened, jpeg);
    GraphicsExportSetCompressionQuality(opened, kHighestQuality);
    std::uint64_t size = 0;
    return GraphicsExportDoExport(opened, &size);
}

} // namespace

std::int32_t EncodePixelBufferAsJPEG(FM_Data& result, IPixelBuffer* buffer) {
    if (buffer == nullptr) return kErrorWrongParameter;
    qt::OwnedGWorld port;
    if (const std::int32_t code = WrapPixels(*buffer, port); code != noErr) return code;
    const qt::MemoryHandle jpeg(NewHandle(0));
    if (const std::int32_t code = Encode(port.get(), jpeg.get()); code != noErr) return code;
    const BinaryData container(Host(FM_BinaryData_Constructor1));
    AddStream(container.get(), FourCC("JPEG"), qt::HandleBytes(jpeg.get()));
    AddSizeStream(container.get(), static_cast<std::int32_t>(buffer->GetWidth()),
                  static_cast<std::int32_t>(buffer->GetHeight()));
    SetContainerResult(result, container.get());
    return 0;
}

} // namespace corvane
