#include "platform/quicktime/image_codecs/tiff_file.h"

#include "platform/quicktime/image_codecs/tiff_tags.h"

#include <algorithm>
#include <cstdio>

namespace qt {
namespace {

int Ignore(TIFF*, void*, const char*, const char*, va_list) {
    return 1; // handled: the process's own handlers are not called
}

/// JPEG data in YCbCr is asked for as RGB; any other YCbCr is left to the library.
bool IsJpegYCbCr(const TiffLayout& layout) {
    return layout.photometric == PHOTOMETRIC_YCBCR && layout.compression == COMPRESSION_JPEG &&
           !layout.has_planes && layout.samples == 3 && layout.bits == 8;
}

std::uint16_t ColoursOf(std::uint16_t photometric) {
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_PALETTE: return 1;
    case PHOTOMETRIC_RGB:
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB: return 3;
    case PHOTOMETRIC_SEPARATED: return 4;
    default: return 0;
    }
}

void ReadAlpha(TIFF* tiff, TiffLayout& layout) {
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    g_tiff->GetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds);
    const bool may_have_alpha =
        layout.samples > layout.colours && layout.colours != 4 && layout.photometric != PHOTOMETRIC_PALETTE;
    layout.has_alpha = may_have_alpha && count > 0;
    layout.is_multiplied = layout.has_alpha && kinds[0] == EXTRASAMPLE_ASSOCALPHA;
}

} // namespace

std::unique_ptr<TIFFOpenOptions, FreeTiffOptions> QuietTiffOptions() {
    if (!g_tiff.Load()) return nullptr;
    std::unique_ptr<TIFFOpenOptions, FreeTiffOptions> options(g_tiff->OpenOptionsAlloc());
    if (options == nullptr) return options;
    g_tiff->OpenOptionsSetErrorHandlerExtR(options.get(), Ignore, nullptr);
    g_tiff->OpenOptionsSetWarningHandlerExtR(options.get(), Ignore, nullptr);
    g_tiff->OpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(kMaximumPixelBytes));
    return options;
}

TiffFile::TiffFile(DataSource& source) : input_{source, 0} {
    const auto options = QuietTiffOptions();
    if (options == nullptr || !HasBearableTiffTags(source)) return;
    tiff_.reset(g_tiff->ClientOpenExt("", "rm", &input_, Read, Write, Seek, Close, GetSize, nullptr, nullptr,
                                      options.get()));
}

tmsize_t TiffFile::Read(thandle_t handle, void* bytes, tmsize_t count) {
    Input& input = *static_cast<Input*>(handle);
    if (count <= 0) return 0;
    const std::span buffer(static_cast<std::byte*>(bytes), static_cast<std::size_t>(count));
    const std::size_t read = input.source.Read(input.offset, buffer);
    input.offset += read;
    return static_cast<tmsize_t>(read);
}

tmsize_t TiffFile::Write(thandle_t, void*, tmsize_t) {
    return -1;
}

toff_t TiffFile::Seek(thandle_t handle, toff_t offset, int from) {
    Input& input = *static_cast<Input*>(handle);
    const std::uint64_t base = from == SEEK_SET   ? 0
                               : from == SEEK_CUR ? input.offset
                                                  : input.source.GetSize();
    input.offset = base + offset;
    return input.offset;
}

int TiffFile::Close(thandle_t) {
    return 0;
}

toff_t TiffFile::GetSize(thandle_t handle) {
    return static_cast<Input*>(handle)->source.GetSize();
}

ComponentResult ReadTiffLayout(TIFF* tiff, TiffLayout& layout) {
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t planes = PLANARCONFIG_CONTIG;
    g_tiff->GetField(tiff, TIFFTAG_IMAGEWIDTH, &layout.width);
    g_tiff->GetField(tiff, TIFFTAG_IMAGELENGTH, &layout.height);
    g_tiff->GetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &layout.bits);
    g_tiff->GetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &layout.samples);
    g_tiff->GetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &layout.compression);
    g_tiff->GetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &format);
    g_tiff->GetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planes);
    if (g_tiff->GetField(tiff, TIFFTAG_PHOTOMETRIC, &layout.photometric) == 0) {
        layout.photometric = layout.samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    }
    if (g_tiff->IsCODECConfigured(layout.compression) == 0) return codecBadDataErr;
    layout.is_float = format == SAMPLEFORMAT_IEEEFP;
    layout.has_planes = planes == PLANARCONFIG_SEPARATE && layout.samples > 1;
    layout.colours = IsJpegYCbCr(layout) ? 3 : ColoursOf(layout.photometric);
    const bool has_known_samples =
        layout.is_float  ? layout.bits == 16 || layout.bits == 32 || layout.bits == 64
        : layout.IsLab() ? layout.bits == 8 || layout.bits == 16
                         : format != SAMPLEFORMAT_INT && (layout.bits <= 16 || layout.bits == 32);
    const bool has_palette_entry =
        layout.photometric != PHOTOMETRIC_PALETTE || (layout.bits <= 16 && !layout.is_float);
    if (layout.colours > 0 && has_known_samples && has_palette_entry && layout.bits > 0 &&
        layout.samples >= layout.colours) {
        ReadAlpha(tiff, layout);
        return noErr;
    }
    std::array<char, 1024> message;
    layout.is_converted = true;
    return g_tiff->RGBAImageOK(tiff, message.data()) != 0 ? ComponentResult{noErr} : codecBadDataErr;
}

} // namespace qt
