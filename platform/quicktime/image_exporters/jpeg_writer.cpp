#include "platform/quicktime/image_exporters/jpeg_writer.h"

#include "platform/quicktime/image_exporters/resolution.h"

#include <algorithm>
#include <new>

namespace qt {
namespace {

void OnError(j_common_ptr common) {
    std::longjmp(static_cast<JpegWriter*>(common->client_data)->failed, 1);
}

void OnMessage(j_common_ptr, int) {}

void Flush(j_compress_ptr compress, std::size_t count) {
    auto& writer = *static_cast<JpegWriter*>(compress->client_data);
    const auto* bytes = reinterpret_cast<const std::byte*>(writer.buffer.data());
    bool stored = true;
    try {
        writer.out->insert(writer.out->end(), bytes, bytes + count);
    } catch (const std::bad_alloc&) {
        stored = false; // jumping out of a handler would lose the exception
    }
    if (!stored) OnError(reinterpret_cast<j_common_ptr>(compress));
    writer.output.next_output_byte = writer.buffer.data();
    writer.output.free_in_buffer = writer.buffer.size();
}

void OnStart(j_compress_ptr compress) {
    Flush(compress, 0);
}

boolean OnFull(j_compress_ptr compress) {
    Flush(compress, static_cast<JpegWriter*>(compress->client_data)->buffer.size());
    return TRUE;
}

void OnEnd(j_compress_ptr compress) {
    const auto& writer = *static_cast<JpegWriter*>(compress->client_data);
    Flush(compress, writer.buffer.size() - writer.output.free_in_buffer);
}

} // namespace

void PrepareJpeg(JpegWriter& writer, EncodedBytes& out) {
    writer.compress.mem = nullptr; // nothing to destroy while the library has not made it
    writer.out = &out;
}

void BeginJpeg(JpegWriter& writer) {
    writer.compress.err = jpeg_std_error(&writer.errors);
    writer.errors.error_exit = OnError;
    writer.errors.emit_message = OnMessage;
    writer.compress.client_data = &writer;
    jpeg_create_compress(&writer.compress);
    writer.output.init_destination = OnStart;
    writer.output.empty_output_buffer = OnFull;
    writer.output.term_destination = OnEnd;
    writer.compress.dest = &writer.output;
}

UINT16 JpegDots(std::uint32_t resolution) {
    return static_cast<UINT16>(
        std::clamp((std::uint64_t{resolution} + 0x8000) >> 16, std::uint64_t{1}, std::uint64_t{0xFFFF}));
}

void SetJpegResolution(jpeg_compress_struct& compress, const ExportSettings& settings) {
    constexpr UINT8 kDotsPerInch = 1;
    if (!settings.horizontal_resolution) return;
    compress.density_unit = kDotsPerInch;
    compress.X_density = JpegDots(ResolutionOf(settings).horizontal);
    compress.Y_density = JpegDots(ResolutionOf(settings).vertical);
}

} // namespace qt
