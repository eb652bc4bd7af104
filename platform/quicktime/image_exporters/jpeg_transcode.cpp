#include "platform/quicktime/image_exporters/jpeg_transcode.h"

#include "platform/quicktime/image_codecs/jpeg_reader.h"
#include "platform/quicktime/image_codecs/jpeg_segments.h"
#include "platform/quicktime/image_exporters/jpeg_resolution.h"
#include "platform/quicktime/image_exporters/jpeg_writer.h"
#include "platform/quicktime/image_exporters/pass_on.h"

#include <array>
#include <new>

namespace qt {
namespace {

/// All markers in their order. That they stand in front of all that the library writes keeps EXIF blocks
/// where readers look for them.
void CopyMarkers(const jpeg_decompress_struct& from, jpeg_compress_struct& to) {
    for (const jpeg_marker_struct* marker = from.marker_list; marker != nullptr; marker = marker->next)
        jpeg_write_marker(&to, marker->marker, marker->data, marker->data_length);
}

/// The reader's jump target serves both: an error of either ends the copy.
bool Copy(JpegReader& reader, JpegWriter& writer, bool progressive) {
    if (setjmp(reader.failed) != 0) return false;
    ReadJpegHeader(reader);
    jpeg_decompress_struct& from = reader.decompress;
    jvirt_barray_ptr* coefficients = jpeg_read_coefficients(&from);
    if (setjmp(writer.failed) != 0) return false;
    BeginJpeg(writer);
    jpeg_compress_struct& to = writer.compress;
    jpeg_copy_critical_parameters(&from, &to);
    to.write_JFIF_header = FALSE; // it is among the markers, as is Adobe's, where the source has it
    to.write_Adobe_marker = FALSE;
    if (progressive) jpeg_simple_progression(&to);
    jpeg_write_coefficients(&to, coefficients);
    CopyMarkers(from, to);
    jpeg_finish_compress(&to);
    jpeg_finish_decompress(&from);
    return true;
}

bool CopyCoefficients(DataSource& source, bool progressive, EncodedBytes& out) {
    JpegReader reader;
    JpegWriter writer;
    std::array<std::byte, 65'536> buffer;
    PrepareJpeg(reader, source, buffer);
    reader.keeps_markers = true;
    PrepareJpeg(writer, out);
    const bool copied = Copy(reader, writer, progressive);
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

struct Coding {
    bool is_progressive = false;
    bool takes_jfif = false; ///< a JFIF header does not change the meaning of the components
};

/// False when the library refuses the data.
bool ReadCoding(JpegReader& reader, Coding& coding) {
    if (setjmp(reader.failed) != 0) return false;
    ReadJpegHeader(reader);
    coding = {reader.decompress.progressive_mode != FALSE, reader.decompress.jpeg_color_space != JCS_RGB};
    return true;
}

bool CodingOf(DataSource& source, Coding& coding) {
    JpegReader reader;
    std::array<std::byte, 1024> buffer;
    PrepareJpeg(reader, source, buffer);
    const bool is_read = ReadCoding(reader, coding);
    jpeg_destroy_decompress(&reader.decompress);
    return is_read;
}

bool Differs(const std::optional<Fixed>& wanted, Fixed present) {
    return wanted && *wanted != present;
}

/// Only another order of scans needs new entropy coding; other headers are put around the data as it is.
bool Append(DataSource& source, const ImageDescription& description, const ExportSettings& settings,
            EncodedBytes& out) {
    const bool has_resolution = !Differs(settings.horizontal_resolution, description.hRes) &&
                                !Differs(settings.vertical_resolution, description.vRes);
    if (has_resolution && !settings.compression_method) return AppendSource(source, out);
    const std::size_t begin = out.size();
    Coding coding;
    if (!CodingOf(source, coding)) return false;
    const std::int32_t other_order = coding.is_progressive ? 0 : 1;
    const bool copied = settings.compression_method != other_order
                            ? AppendSource(source, out)
                            : HasFewSegments(source) && CopyCoefficients(source, !coding.is_progressive, out);
    // Where only a JFIF header could state it, and would change the colours, no loss is worth a resolution.
    return copied && (has_resolution || RestateJpegResolution(settings, coding.takes_jfif, begin, out) ||
                      !coding.takes_jfif);
}

} // namespace

bool TranscodeJpeg(DataSource& source, const ImageDescription& /*description*/,
                   const ExportSettings& settings, EncodedBytes& out) {
    ImageFacts facts; // the data's own: a file around it may say something else
    if (kJpegCodec.read_facts(source, facts) != noErr) return false;
    if (settings.depth && *settings.depth != facts.description.depth) return false;
    const std::size_t before = out.size();
    bool copied = false;
    try {
        copied = Append(source, facts.description, settings, out);
    } catch (const std::bad_alloc&) {
        copied = false;
    }
    const bool fits = !settings.target_size || out.size() - before <= *settings.target_size;
    if (!copied || !fits) out.resize(before);
    return copied && fits;
}

} // namespace qt
