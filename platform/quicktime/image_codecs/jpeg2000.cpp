// JPEG 2000, JP2 files and codestreams, through OpenJPEG.
#include "platform/quicktime/image_codecs/jpeg2000_header.h"
#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_codecs/raster.h"

#include <algorithm>
#include <openjpeg.h>
#include <thread>

namespace qt {
namespace {

constexpr std::array<OSType, 5> kTypes = {Code("jp2 "), Code("mjp2"), Code("JP2 "), Code("MJP2"),
                                          Code("jpx ")};

struct Input {
    DataSource& source;
    std::uint64_t cut_length_at; ///< 0: nowhere
    std::uint64_t offset = 0;
};

OPJ_SIZE_T ReadInput(void* bytes, OPJ_SIZE_T count, void* data) {
    constexpr auto kEnd = static_cast<OPJ_SIZE_T>(-1);
    Input& input = *static_cast<Input*>(data);
    const std::size_t read =
        input.source.Read(input.offset, std::span(static_cast<std::byte*>(bytes), count));
    // The library takes memory for the length that a tile part claims. 0 stands for what is left.
    for (std::uint64_t at = input.cut_length_at; at != 0 && at < input.cut_length_at + 4; ++at)
        if (at >= input.offset && at - input.offset < read)
            static_cast<std::byte*>(bytes)[at - input.offset] = std::byte{0};
    input.offset += read;
    return read > 0 ? read : kEnd;
}

OPJ_OFF_T SkipInput(OPJ_OFF_T count, void* data) {
    Input& input = *static_cast<Input*>(data);
    const std::uint64_t size = input.source.GetSize();
    const std::uint64_t left = size > input.offset ? size - input.offset : 0;
    if (count < 0 || left == 0) return -1;
    const std::uint64_t skipped = std::min(static_cast<std::uint64_t>(count), left);
    input.offset += skipped;
    return static_cast<OPJ_OFF_T>(skipped);
}

OPJ_BOOL SeekInput(OPJ_OFF_T offset, void* data) {
    Input& input = *static_cast<Input*>(data);
    if (offset < 0 || static_cast<std::uint64_t>(offset) > input.source.GetSize()) return OPJ_FALSE;
    input.offset = static_cast<std::uint64_t>(offset);
    return OPJ_TRUE;
}

// The library's stream and codec types are void*, passed by pointer.
using Stream = std::unique_ptr<opj_stream_t, void (*)(opj_stream_t*)>;
using Codec = std::unique_ptr<opj_codec_t, void (*)(opj_codec_t*)>;
struct DestroyImage {
    void operator()(opj_image_t* image) const { opj_image_destroy(image); }
};
using OpjImage = std::unique_ptr<opj_image_t, DestroyImage>;

OpjImage DecodeComponents(DataSource& source, const Jpeg2000Header& header) {
    constexpr std::uint64_t kSamplesWorthThreads = 1 << 18;
    Input input{source, header.cut_length_at};
    const Stream stream(opj_stream_create(OPJ_J2K_STREAM_CHUNK_SIZE, OPJ_TRUE), opj_stream_destroy);
    const Codec codec(opj_create_decompress(header.has_boxes ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K),
                      opj_destroy_codec);
    if (stream == nullptr || codec == nullptr) return nullptr;
    opj_stream_set_user_data(stream.get(), &input, nullptr);
    opj_stream_set_user_data_length(stream.get(), source.GetSize());
    opj_stream_set_read_function(stream.get(), ReadInput);
    opj_stream_set_skip_function(stream.get(), SkipInput);
    opj_stream_set_seek_function(stream.get(), SeekInput);
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    if (opj_setup_decoder(codec.get(), &parameters) == OPJ_FALSE) return nullptr;
    // Data that breaks off gives what is there.
    opj_decoder_set_strict_mode(codec.get(), header.cut_length_at == 0 ? OPJ_TRUE : OPJ_FALSE);
    if (header.samples >= kSamplesWorthThreads) {
        const unsigned threads = std::clamp(std::thread::hardware_concurrency(), 1U, 8U);
        opj_codec_set_threads(codec.get(), static_cast<int>(threads));
    }
    opj_image_t* made = nullptr;
    const bool has_header = opj_read_header(stream.get(), codec.get(), &made) != OPJ_FALSE;
    OpjImage image(made);
    if (!has_header || opj_decode(codec.get(), stream.get(), image.get()) == OPJ_FALSE) return nullptr;
    return image;
}

/// Samples of a component as bytes of the pixels of a row; the nearest where there are fewer than pixels.
class ComponentPainter {
public:
    ComponentPainter(const opj_image_t& image, const opj_image_comp_t& component)
        : image_(image),
          component_(component),
          zero_(component.sgnd != 0 ? 1 << (component.prec - 1) : 0),
          most_((std::int64_t{1} << component.prec) - 1) {}

    void Paint(std::int32_t y, std::int32_t count, std::byte* bytes) const {
        const OPJ_INT32* row = component_.data + std::size_t{At(image_.y0 + static_cast<std::uint32_t>(y),
                                                                component_.dy, component_.y0, component_.h)} *
                                                     component_.w;
        const bool has_all = component_.dx == 1 && component_.w >= static_cast<std::uint32_t>(count);
        if (has_all && component_.prec == 8 && zero_ == 0) {
            for (std::int32_t x = 0; x < count; ++x)
                bytes[std::ptrdiff_t{x} * 4] = static_cast<std::byte>(std::clamp(row[x], 0, 255));
            return;
        }
        for (std::int32_t x = 0; x < count; ++x) {
            const std::uint32_t column =
                At(image_.x0 + static_cast<std::uint32_t>(x), component_.dx, component_.x0, component_.w);
            const std::int64_t value = std::clamp<std::int64_t>(std::int64_t{row[column]} + zero_, 0, most_);
            bytes[std::ptrdiff_t{x} * 4] = static_cast<std::byte>((value * 255 + most_ / 2) / most_);
        }
    }

private:
    /// Row or column of the component for a position on the reference grid.
    static std::uint32_t At(std::uint32_t position, std::uint32_t step, std::uint32_t first,
                            std::uint32_t count) {
        const std::uint32_t at = position / step;
        return std::min(at > first ? at - first : 0, count - 1);
    }

    const opj_image_t& image_;
    const opj_image_comp_t& component_;
    std::int64_t zero_; ///< added to signed samples
    std::int64_t most_;
};

/// Luma in the red byte, the blue and red differences in the green and blue ones.
std::uint32_t FromYcc(std::uint32_t ycc) {
    const auto luma = static_cast<double>(Red(ycc));
    const double blue = static_cast<double>(Green(ycc)) - 128.0;
    const double red = static_cast<double>(Blue(ycc)) - 128.0;
    const auto byte = [](double value) {
        return static_cast<std::uint32_t>(std::clamp(value + 0.5, 0.0, 255.0));
    };
    return Pixel(byte(luma + 1.402 * red), byte(luma - 0.344136 * blue - 0.714136 * red),
                 byte(luma + 1.772 * blue), Alpha(ycc));
}

std::uint32_t FromInks(std::uint32_t inks) {
    const std::uint32_t paper = 255 - Alpha(inks);
    const auto light = [&](std::uint32_t ink) { return ((255 - ink) * paper + 127) / 255; };
    return Pixel(light(Red(inks)), light(Green(inks)), light(Blue(inks)));
}

void PaintComponents(const opj_image_t& decoded, PixelImage& image) {
    const std::span components(decoded.comps, std::min<std::size_t>(decoded.numcomps, 4));
    const bool has_inks = components.size() == 4 && decoded.color_space == OPJ_CLRSPC_CMYK;
    const bool has_colours = components.size() >= 3;
    image.has_alpha = components.size() % 2 == 0 && !has_inks;
    image.is_grey = !has_colours;
    const bool is_ycc = has_colours && !has_inks &&
                        (decoded.color_space == OPJ_CLRSPC_SYCC || components[1].dx > components[0].dx);
    constexpr std::array<std::size_t, 4> kColourBytes = {2, 1, 0, 3};
    constexpr std::array<std::size_t, 2> kGreyBytes = {0, 3};
    for (std::int32_t y = 0; y < image.height(); ++y) {
        std::uint32_t* row = image.Row(y);
        if (!image.has_alpha && !has_inks) std::fill_n(row, image.width(), kBlack);
        for (std::size_t i = 0; i < components.size(); ++i) {
            auto* bytes = reinterpret_cast<std::byte*>(row) + (has_colours ? kColourBytes[i] : kGreyBytes[i]);
            ComponentPainter(decoded, components[i]).Paint(y, image.width(), bytes);
        }
        std::uint32_t* end = row + image.width();
        if (is_ycc) std::transform(row, end, row, FromYcc);
        if (has_inks) std::transform(row, end, row, FromInks);
        if (!has_colours) {
            std::transform(row, end, row, [](std::uint32_t pixel) {
                return (pixel & 0xFF00'0000) | (pixel & 0xFF) * 0x01'0101;
            });
        }
    }
}

std::int16_t DepthOf(const Jpeg2000Header& header) {
    if (header.has_palette) return 8;
    if (header.has_alpha || header.components == 2 || header.components >= 4) return 32;
    return header.components == 1 ? 40 : 24;
}

ComponentResult Describe(const Jpeg2000Header& header, ImageDescription& description) {
    constexpr std::int32_t kNormalQuality = 512; // what an irreversible codestream had is not told
    description.cType = Code("mjp2");
    description.name = Name("JPEG 2000");
    description.spatialQuality = header.is_reversible ? kLosslessQuality : kNormalQuality;
    description.depth = DepthOf(header);
    description.hRes = FixedResolution(header.horizontal_dpi);
    description.vRes = FixedResolution(header.vertical_dpi);
    return SetDimensions(description, header.width, header.height);
}

ComponentResult ReadFacts(DataSource& source, ImageFacts& facts) {
    Jpeg2000Header header;
    if (const auto code = ReadJpeg2000Header(source, header); code != noErr) return code;
    facts.data_size = source.GetSize();
    return Describe(header, facts.description);
}

ComponentResult Decode(DataSource& source, std::uint32_t /*index*/, PixelImage& image) {
    Jpeg2000Header header;
    ImageDescription description;
    if (const auto code = ReadJpeg2000Header(source, header); code != noErr) return code;
    if (const auto code = Describe(header, description); code != noErr) return code;
    if (header.samples * sizeof(OPJ_INT32) > kMaximumPixelBytes) return codecSizeErr;
    const OpjImage decoded = DecodeComponents(source, header);
    if (decoded == nullptr || decoded->numcomps == 0) return codecBadDataErr;
    const std::span components(decoded->comps, decoded->numcomps);
    const bool is_usable = std::ranges::all_of(components, [](const opj_image_comp_t& component) {
        return component.data != nullptr && component.w > 0 && component.h > 0 && component.prec > 0 &&
               component.prec <= 31 && component.dx > 0 && component.dy > 0;
    });
    if (!is_usable) return codecBadDataErr;
    if (const auto code = AllocateFor(description, image); code != noErr) return code;
    PaintComponents(*decoded, image);
    return noErr;
}

std::vector<std::byte> BytesOf(DataSource& source, const Jpeg2000Part& part) {
    std::vector<std::byte> bytes(part.size <= kLargestMetadataBlock ? part.size : 0);
    bytes.resize(source.Read(part.at, bytes));
    return bytes;
}

ComponentResult ReadMetadata(DataSource& source, std::vector<MetadataItem>& items) {
    Jpeg2000Header header;
    if (const auto code = ReadJpeg2000Header(source, header); code != noErr) return code;
    AppendIptcItems(BytesOf(source, header.iptc), items);
    const std::vector<std::byte> packet = BytesOf(source, header.xmp);
    AppendXmpItems({reinterpret_cast<const char*>(packet.data()), packet.size()}, items);
    return noErr;
}

} // namespace

const ImageCodec kJpeg2000Codec = {kTypes, SniffJpeg2000, ReadFacts, true, Decode, ReadMetadata};

} // namespace qt
