#include "platform/quicktime/image_exporters/jpeg_transcode.h"

#include "platform/quicktime/image_codecs/jpeg_reader.h"
#include "platform/quicktime/image_codecs/jpeg_segments.h"
#include "platform/quicktime/image_exporters/jpeg_writer.h"
#include "platform/quicktime/image_exporters/pass_on.h"

#include <array>
#include <new>

namespace qt {
namespace {

/// The markers that describe the image to people: comments and what applications store. JFIF's and Adobe's
/// own are the library's to write.
void CopyMarkers(jpeg_decompress_struct& from, jpeg_compress_struct& to) {
    for (const jpeg_marker_struct* marker = from.marker_list; marker != nullptr; marker = marker->next) {
        const bool is_jfif = to.write_JFIF_header != FALSE && marker->marker == JPEG_APP0;
        const bool is_adobe = to.write_Adobe_marker != FALSE && marker->marker == JPEG_APP0 + 14;
        if (is_jfif || is_adobe) continue;
        jpeg_write_marker(&to, marker->marker, marker->data, marker->data_length);
    }
}

/// The reader's jump target serves both: an error of either ends the copy.
bool Copy(JpegReader& reader, JpegWriter& writer, const ExportSettings& settings) {
    if (setjmp(reader.failed) != 0) return false;
    ReadJpegHeader(reader);
    jpeg_decompress_struct& from = reader.decompress;
    jvirt_barray_ptr* coefficients = jpeg_read_coefficients(&from);
    if (setjmp(writer.failed) != 0) return false;
    BeginJpeg(writer);
    jpeg_compress_struct& to = writer.compress;
    jpeg_copy_critical_parameters(&from, &to);
    if (settings.compression_method == 1) jpeg_simple_progression(&to);
    SetJpegResolution(to, settings);
    jpeg_write_coefficients(&to, coefficients);
    CopyMarkers(from, to);
    jpeg_finish_compress(&to);
    jpeg_finish_decompress(&from);
    return true;
}

bool CopyCoefficients(DataSource& source, const ExportSettings& settings, EncodedBytes& out) {
    JpegReader reader;
    JpegWriter writer;
    std::array<std::byte, 65'536> buffer;
    PrepareJpeg(reader, source, buffer);
    reader.keeps_markers = true;
    PrepareJpeg(writer, out);
    const bool copied = Copy(reader, writer, settings);
    jpeg_destroy_compress(&writer.compress);
    jpeg_destroy_decompress(&reader.decompress);
    return copied;
}

/// Whether there are few enough segments in front of the pixels to be kept: the library appends each to a
/// list that it goes through from the beginning.
bool HasFewSegments(DataSource& source) {
    constexpr int kMost = 1'000;
    int count = 0;
    ForEachJpegSegment(source, [&](const JpegSegment&) { return ++count < kMost; });
    return count < kMost;
}

bool Differs(const std::optional<Fixed>& wanted, Fixed present) {
    return wanted && *wanted != present;
}

} // namespace

bool TranscodeJpeg(DataSource& source, const ImageDescription& /*description*/,
                   const ExportSettings& settings, EncodedBytes& out) {
    ImageFacts facts; // the data's own: a file around it may say something else
    if (kJpegCodec.read_facts(source, facts) != noErr) return false;
    const ImageDescription& description = facts.description;
    if (settings.depth && *settings.depth != description.depth) return false;
    const std::size_t before = out.size();
    const bool as_it_is = !settings.compression_method &&
                          !Differs(settings.horizontal_resolution, description.hRes) &&
                          !Differs(settings.vertical_resolution, description.vRes);
    bool copied = false;
    try {
        copied = as_it_is ? AppendSource(source, out)
                          : HasFewSegments(source) && CopyCoefficients(source, settings, out);
    } catch (const std::bad_alloc&) {
        copied = false;
    }
    const bool fits = !settings.target_size || out.size() - before <= *settings.target_size;
    if (!copied || !fits) out.resize(before);
    return copied && fits;
}

} // namespace qt
