// TIFF files as libtiff opens them, and what one of their images says of its samples.
#pragma once

#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/modules/tiff_library.h"

#include <memory>

namespace qt {

struct FreeTiffOptions {
    void operator()(TIFFOpenOptions* options) const { g_tiff->OpenOptionsFree(options); }
};
/// Options under which the library says nothing and takes no more memory at once than pixels may take. Its
/// message handlers of the process stay as they are. Null without memory or without the library.
std::unique_ptr<TIFFOpenOptions, FreeTiffOptions> QuietTiffOptions();

struct CloseTiff {
    void operator()(TIFF* tiff) const { g_tiff->Close(tiff); }
};
using TiffPointer = std::unique_ptr<TIFF, CloseTiff>;

/// A source open for reading at its first image; it must outlive the file.
class TiffFile {
public:
    explicit TiffFile(DataSource& source);
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;

    /// Null when the source is no TIFF.
    [[nodiscard]] TIFF* Get() const { return tiff_.get(); }

private:
    struct Input {
        DataSource& source;
        std::uint64_t offset;
    };
    static tmsize_t Read(thandle_t handle, void* bytes, tmsize_t count);
    static tmsize_t Write(thandle_t handle, void* bytes, tmsize_t count);
    static toff_t Seek(thandle_t handle, toff_t offset, int from);
    static int Close(thandle_t handle);
    static toff_t GetSize(thandle_t handle);

    Input input_;
    TiffPointer tiff_; ///< uses input_
};

/// How the samples of an image are stored.
struct TiffLayout {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t bits = 1; ///< of a sample
    std::uint16_t samples = 1;
    std::uint16_t photometric = PHOTOMETRIC_MINISWHITE;
    std::uint16_t compression = COMPRESSION_NONE;
    bool is_float = false;     ///< of 16, 32 or 64 bits
    bool has_planes = false;   ///< each sample's rows for themselves
    std::uint16_t colours = 1; ///< samples of a pixel that make its colour
    bool has_alpha = false;
    bool is_multiplied = false; ///< the colours, with the alpha
    /// The library converts the image to RGB, as its samples are none of the colours known here.
    bool is_converted = false;

    /// a and b around 0; else, where it is L*a*b* at all, around the middle of their range.
    [[nodiscard]] bool IsSignedLab() const { return photometric == PHOTOMETRIC_CIELAB; }
    [[nodiscard]] bool IsLab() const { return IsSignedLab() || photometric == PHOTOMETRIC_ICCLAB; }
};

/// The layout of the image at which the file stands; codecBadDataErr for one that can't be decoded.
ComponentResult ReadTiffLayout(TIFF* tiff, TiffLayout& layout);

/// Decodes the image at which the file stands, whose source that is.
ComponentResult DecodeTiff(TIFF* tiff, const TiffLayout& layout, DataSource& source, PixelImage& image);

} // namespace qt
