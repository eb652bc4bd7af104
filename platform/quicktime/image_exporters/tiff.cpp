// TIFF, through libtiff, in strips of some ten KB.
#include "platform/quicktime/image_codecs/packbits.h"
#include "platform/quicktime/image_codecs/tiff_file.h"
#include "platform/quicktime/image_exporters/index_rows.h"
#include "platform/quicktime/image_exporters/opaque_rows.h"
#include "platform/quicktime/image_exporters/pass_on.h"
#include "platform/quicktime/image_exporters/raw_rows.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <new>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code("TIFF"), Code("tiff"), Code("tif ")};
constexpr std::array<std::int32_t, 10> kDepths = {24, 32, 8, 4, 2, 1, 40, 36, 34, 33};
constexpr std::array<std::int32_t, 4> kMethods = {COMPRESSION_NONE, COMPRESSION_PACKBITS, COMPRESSION_LZW,
                                                  COMPRESSION_ADOBE_DEFLATE};
constexpr std::int32_t kGreyDepths = 32; ///< depths above are greys
constexpr std::size_t kStripBytes = 65'536;

/// How a depth is stored.
struct Form {
    std::int32_t quantised; ///< depth for Quantise, 0 for none
    std::uint16_t bits;     ///< of a sample
    std::uint16_t samples;
    std::uint16_t photometric;
};

Form FormOf(const PixelImage& image, std::int32_t depth) {
    switch (depth) {
    case 1:
    case 2:
    case 4:
    case 8: return {depth, static_cast<std::uint16_t>(depth), 1, PHOTOMETRIC_PALETTE};
    case 33:
    case 34:
    case 36:
    case 40: return {depth, static_cast<std::uint16_t>(depth - kGreyDepths), 1, PHOTOMETRIC_MINISBLACK};
    case 16:
    case 24: return {0, 8, 3, PHOTOMETRIC_RGB};
    case 32: return {0, 8, 4, PHOTOMETRIC_RGB};
    default: break;
    }
    if (image.has_alpha) return {0, 8, 4, PHOTOMETRIC_RGB};
    return image.is_grey ? Form{40, 8, 1, PHOTOMETRIC_MINISBLACK} : Form{0, 8, 3, PHOTOMETRIC_RGB};
}

/// Where the library writes; its offsets count from `begin`.
struct Output {
    EncodedBytes& bytes;
    std::size_t begin;
    std::size_t at;
};

tmsize_t ReadOutput(thandle_t handle, void* bytes, tmsize_t count) {
    Output& output = *static_cast<Output*>(handle);
    const std::size_t left = output.bytes.size() - std::min(output.at, output.bytes.size());
    const std::size_t read = std::min(static_cast<std::size_t>(std::max<tmsize_t>(count, 0)), left);
    if (read > 0) std::memcpy(bytes, &output.bytes[output.at], read);
    output.at += read;
    return static_cast<tmsize_t>(read);
}

tmsize_t WriteOutput(thandle_t handle, void* bytes, tmsize_t count) {
    Output& output = *static_cast<Output*>(handle);
    const auto* first = static_cast<const std::byte*>(bytes);
    const auto size = static_cast<std::size_t>(std::max<tmsize_t>(count, 0));
    try {
        if (output.at > output.bytes.size()) output.bytes.resize(output.at);
        const std::size_t replaced = std::min(size, output.bytes.size() - output.at);
        std::copy_n(first, replaced, output.bytes.begin() + static_cast<std::ptrdiff_t>(output.at));
        output.bytes.insert(output.bytes.end(), first + replaced, first + size);
    } catch (const std::bad_alloc&) {
        return -1;
    }
    output.at += size;
    return count;
}

toff_t SeekOutput(thandle_t handle, toff_t offset, int from) {
    Output& output = *static_cast<Output*>(handle);
    const std::size_t base = from == SEEK_SET   ? output.begin
                             : from == SEEK_CUR ? output.at
                                                : output.bytes.size();
    output.at = base + offset;
    return output.at - output.begin;
}

int CloseOutput(thandle_t) {
    return 0;
}

toff_t SizeOfOutput(thandle_t handle) {
    const Output& output = *static_cast<Output*>(handle);
    return output.bytes.size() - output.begin;
}

std::uint16_t CompressionOf(const ExportSettings& settings) {
    const std::int32_t method = settings.compression_method.value_or(COMPRESSION_NONE);
    const bool is_known = std::ranges::find(kMethods, method) != kMethods.end();
    return static_cast<std::uint16_t>(is_known ? method : COMPRESSION_NONE);
}

void PutPalette(TIFF* tiff, const Form& form, const std::vector<std::uint32_t>& palette) {
    std::array<std::array<std::uint16_t, 256>, 3> maps{};
    for (std::size_t i = 0; i < palette.size(); ++i) {
        maps[0][i] = static_cast<std::uint16_t>(Red(palette[i]) * 257);
        maps[1][i] = static_cast<std::uint16_t>(Green(palette[i]) * 257);
        maps[2][i] = static_cast<std::uint16_t>(Blue(palette[i]) * 257);
    }
    if (form.photometric != PHOTOMETRIC_PALETTE) return;
    g_tiff->SetField(tiff, TIFFTAG_COLORMAP, maps[0].data(), maps[1].data(), maps[2].data());
}

void PutFields(TIFF* tiff, const PixelImage& image, const ExportSettings& settings, const Form& form,
               std::uint32_t rows_of_strip) {
    const std::uint16_t compression = CompressionOf(settings);
    g_tiff->SetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(image.width()));
    g_tiff->SetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(image.height()));
    g_tiff->SetField(tiff, TIFFTAG_BITSPERSAMPLE, form.bits);
    g_tiff->SetField(tiff, TIFFTAG_SAMPLESPERPIXEL, form.samples);
    g_tiff->SetField(tiff, TIFFTAG_PHOTOMETRIC, form.photometric);
    g_tiff->SetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    g_tiff->SetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    g_tiff->SetField(tiff, TIFFTAG_ROWSPERSTRIP, rows_of_strip);
    g_tiff->SetField(tiff, TIFFTAG_COMPRESSION, compression);
    const bool has_differences = compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE;
    if (has_differences && form.bits == 8 && form.photometric != PHOTOMETRIC_PALETTE) {
        g_tiff->SetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    }
    if (form.samples == 4) {
        const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
        g_tiff->SetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    }
    if (const double dpi = ResolutionIn(settings.horizontal_resolution, 1.0); dpi > 0.0) {
        const double vertical = ResolutionIn(settings.vertical_resolution, 1.0);
        g_tiff->SetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        g_tiff->SetField(tiff, TIFFTAG_XRESOLUTION, dpi);
        g_tiff->SetField(tiff, TIFFTAG_YRESOLUTION, vertical > 0.0 ? vertical : dpi);
    }
}

void StoreRgba(const std::uint32_t* pixels, std::int32_t count, std::byte* samples) {
    for (std::int32_t x = 0; x < count; ++x, samples += 4) {
        const std::uint32_t pixel = pixels[x];
        const std::uint32_t swapped = (pixel & 0xFF00'FF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16;
        std::memcpy(samples, &swapped, sizeof swapped);
    }
}

/// A row as it is stored.
void StoreRow(const PixelImage& image, const Form& form, const IndexedImage& indexed, std::int32_t y,
              std::uint32_t* scratch, std::byte* row) {
    const auto width = static_cast<std::size_t>(image.width());
    if (form.samples == 4) {
        StoreRgba(image.Row(y), image.width(), row);
    } else if (form.samples == 3) {
        StoreRgb(OpaqueRow(image, y, scratch), image.width(), row);
    } else {
        const std::span indices(indexed.indices);
        PackIndices(indices.subspan(static_cast<std::size_t>(y) * width, width), form.bits, row);
    }
}

/// Packs the rows of a strip, each for itself, and answers how many bytes they took.
std::size_t PackRows(std::span<const std::byte> strip, std::size_t row_bytes, std::byte* out) {
    std::byte* const begin = out;
    for (; !strip.empty(); strip = strip.subspan(row_bytes)) out += PackBits(strip.first(row_bytes), out);
    return static_cast<std::size_t>(out - begin);
}

bool PutStrips(TIFF* tiff, const PixelImage& image, const Form& form, const IndexedImage& indexed,
               std::size_t row_bytes, std::int32_t rows_of_strip, bool packs) {
    const auto most_rows = static_cast<std::size_t>(rows_of_strip);
    std::vector<std::byte> strip(row_bytes * most_rows);
    std::vector<std::byte> packed(packs ? PackedBound(row_bytes) * most_rows : 0);
    std::vector<std::uint32_t> scratch(static_cast<std::size_t>(image.width()));
    std::uint32_t index = 0;
    for (std::int32_t top = 0; top < image.height(); top += rows_of_strip, ++index) {
        const std::int32_t rows = std::min(rows_of_strip, image.height() - top);
        std::byte* row = strip.data();
        for (std::int32_t y = top; y < top + rows; ++y, row += row_bytes) {
            StoreRow(image, form, indexed, y, scratch.data(), row);
        }
        const auto stored = std::span(strip).first(row_bytes * static_cast<std::size_t>(rows));
        tmsize_t written = 0;
        if (packs) { // the library's own packing takes several times as long
            const std::size_t size = PackRows(stored, row_bytes, packed.data());
            written = g_tiff->WriteRawStrip(tiff, index, packed.data(), static_cast<tmsize_t>(size));
        } else {
            written =
                g_tiff->WriteEncodedStrip(tiff, index, strip.data(), static_cast<tmsize_t>(stored.size()));
        }
        if (written < 0) return false;
    }
    return true;
}

/// A grey image's indices stand for levels; those of an image that had fewer greys are only places in its
/// palette.
void MakeLevels(const Form& form, IndexedImage& indexed) {
    const std::uint32_t most = (1U << form.bits) - 1;
    for (std::uint8_t& index : indexed.indices) {
        index = static_cast<std::uint8_t>((Red(indexed.palette[index]) * most + 127) / 255);
    }
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    const Form form = FormOf(image, settings.depth.value_or(0));
    IndexedImage indexed{};
    if (form.quantised != 0) {
        if (const auto code = QuantiseOpaque(image, form.quantised, indexed); code != noErr) return code;
    }
    if (form.photometric == PHOTOMETRIC_MINISBLACK) MakeLevels(form, indexed);
    const std::size_t row_bytes =
        (static_cast<std::size_t>(image.width()) * form.bits * form.samples + 7) / 8;
    const auto rows_of_strip = static_cast<std::int32_t>(
        std::clamp<std::size_t>(kStripBytes / row_bytes, 1, static_cast<std::size_t>(image.height())));
    Output output{out, out.size(), out.size()};
    out.reserve(out.size() + PackedBound(row_bytes) * static_cast<std::size_t>(image.height()) + kStripBytes);
    const auto options = QuietTiffOptions();
    if (options == nullptr) return memFullErr;
    const TiffPointer tiff(g_tiff->ClientOpenExt("", "w", &output, ReadOutput, WriteOutput, SeekOutput,
                                                 CloseOutput, SizeOfOutput, nullptr, nullptr, options.get()));
    if (tiff == nullptr) return memFullErr;
    PutFields(tiff.get(), image, settings, form, static_cast<std::uint32_t>(rows_of_strip));
    PutPalette(tiff.get(), form, indexed.palette);
    const bool packs = CompressionOf(settings) == COMPRESSION_PACKBITS;
    const bool is_put = PutStrips(tiff.get(), image, form, indexed, row_bytes, rows_of_strip, packs) &&
                        g_tiff->WriteDirectory(tiff.get()) != 0;
    return is_put ? ComponentResult{noErr} : memFullErr;
}

} // namespace

const ImageExporter kTiffExporter = {
    kTypes, "tif", "TIFF", kDepths, false, false, kMethods, Encode, PassOnUnchanged<kTiffCodec>};

} // namespace qt
