// QuickTime image files: an image description and the image's data, which is a JPEG, or the plain pixels
// when nothing may be lost.
#include "platform/quicktime/image_exporters/big_endian.h"
#include "platform/quicktime/image_exporters/pass_on.h"
#include "platform/quicktime/image_exporters/resolution.h"

#include <array>

namespace qt {
namespace {

constexpr std::array<OSType, 2> kTypes = {Code("qtif"), Code("QTIF")};
constexpr std::array<std::int32_t, 3> kDepths = {24, 32, 40};
constexpr std::size_t kAtomHeader = 8;
constexpr std::uint32_t kDescriptionSize = 86;
constexpr std::size_t kDataSizeAt = kAtomHeader + 44; ///< in the file: of the data, in bytes
constexpr std::size_t kFileHeader = 2 * kAtomHeader + kDescriptionSize;
constexpr std::int32_t kLossless = 1024;

/// Everything in front of the data, with room for the sizes.
void AppendHeader(const ImageDescription& description, EncodedBytes& out) {
    constexpr std::uint32_t kNoColours = 0xFFFF;
    Append32(out, kAtomHeader + kDescriptionSize);
    Append32(out, Code("idsc"));
    Append32(out, kDescriptionSize);
    Append32(out, description.cType);
    out.resize(out.size() + 20); // reserved, data reference, version, vendor, temporal quality
    Append32(out, static_cast<std::uint32_t>(description.spatialQuality));
    Append16(out, static_cast<std::uint32_t>(description.width));
    Append16(out, static_cast<std::uint32_t>(description.height));
    Append32(out, static_cast<std::uint32_t>(description.hRes));
    Append32(out, static_cast<std::uint32_t>(description.vRes));
    Append32(out, 0); // the data's size
    Append16(out, 1); // frames
    for (const unsigned char character : description.name) out.push_back(std::byte{character});
    Append16(out, static_cast<std::uint32_t>(description.depth));
    Append16(out, kNoColours);
    Append32(out, 0);
    Append32(out, Code("idat"));
}

/// Puts the sizes in, now that the data is there.
ComponentResult Complete(std::size_t begin, EncodedBytes& out) {
    const std::size_t data_size = out.size() - begin - kFileHeader;
    if (data_size > 0xFFFF'FFFF - kAtomHeader) return codecSizeErr;
    Replace32(out, begin + kDataSizeAt, static_cast<std::uint32_t>(data_size));
    Replace32(out, begin + kFileHeader - kAtomHeader, static_cast<std::uint32_t>(data_size + kAtomHeader));
    return noErr;
}

ImageDescription Describe(const PixelImage& image, const ExportSettings& settings) {
    const DotsPerInch resolution = ResolutionOf(settings);
    ImageDescription description;
    description.width = static_cast<std::int16_t>(image.width());
    description.height = static_cast<std::int16_t>(image.height());
    description.hRes = static_cast<Fixed>(resolution.horizontal);
    description.vRes = static_cast<Fixed>(resolution.vertical);
    return description;
}

void AppendPlainPixels(const PixelImage& image, bool alpha, EncodedBytes& out) {
    const auto width = static_cast<std::size_t>(image.width());
    const std::size_t pixel_size = alpha ? 4 : 3;
    std::size_t at = out.size();
    out.resize(at + pixel_size * width * static_cast<std::size_t>(image.height()));
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::uint32_t* pixels = image.Row(y);
        std::byte* bytes = out.data() + at;
        at += pixel_size * width;
        for (std::size_t x = 0; x < width; ++x, bytes += pixel_size) {
            std::byte* colours = bytes;
            if (alpha) *colours++ = static_cast<std::byte>(Alpha(pixels[x]));
            colours[0] = static_cast<std::byte>(Red(pixels[x]));
            colours[1] = static_cast<std::byte>(Green(pixels[x]));
            colours[2] = static_cast<std::byte>(Blue(pixels[x]));
        }
    }
}

ComponentResult AppendJpeg(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    const ImageExporter* exporter = FindImageExporter(Code("JPEG"));
    if (exporter == nullptr) return codecUnimpErr;
    return exporter->encode(image, settings, out);
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    const std::size_t begin = out.size();
    ImageDescription description = Describe(image, settings);
    const bool keeps_alpha = image.has_alpha && settings.depth.value_or(32) == 32;
    const bool lossless = settings.quality ? *settings.quality >= kLossless : keeps_alpha;
    const bool plain = lossless && !settings.target_size;
    if (plain) {
        description.cType = Code("raw ");
        description.name = Name("None");
        description.spatialQuality = kLossless;
        description.depth = keeps_alpha ? 32 : 24;
        AppendHeader(description, out);
        AppendPlainPixels(image, keeps_alpha, out);
    } else {
        const bool grey = settings.depth ? *settings.depth > 32 : image.is_grey;
        description.cType = Code("jpeg");
        description.name = Name("Photo - JPEG");
        description.spatialQuality = settings.quality.value_or(512);
        description.depth = grey ? 40 : 24;
        AppendHeader(description, out);
        if (const auto code = AppendJpeg(image, settings, out); code != noErr) return code;
    }
    return Complete(begin, out);
}

/// Any image that is a JPEG or PNG as a whole can be the data.
bool Transcode(DataSource& source, const ImageDescription& description, const ExportSettings& settings,
               EncodedBytes& out) {
    std::array<std::byte, kSniffedBytes> head;
    const ImageCodec* codec = FindImageCodec(std::span(head).first(source.Read(0, head)));
    if (codec != &kJpegCodec && codec != &kPngCodec) return false;
    if (codec != FindImageCodec(description.cType) || settings.depth) return false;
    const std::size_t begin = out.size();
    ImageDescription described = description;
    if (settings.horizontal_resolution) {
        const DotsPerInch resolution = ResolutionOf(settings);
        described.hRes = static_cast<Fixed>(resolution.horizontal);
        described.vRes = static_cast<Fixed>(resolution.vertical);
    }
    AppendHeader(described, out);
    if (AppendSource(source, out) && Complete(begin, out) == noErr) return true;
    out.resize(begin);
    return false;
}

} // namespace

const ImageExporter kQuickTimeImageExporter = {kTypes, "qti",  "QuickTime Image", kDepths, true, true,
                                               {},     Encode, Transcode};

} // namespace qt
