// JPEG 2000, as JP2 files, through OpenJPEG.
#include "platform/quicktime/image_codecs/jpeg2000_header.h"
#include "platform/quicktime/image_exporters/big_endian.h"
#include "platform/quicktime/image_exporters/opaque_rows.h"
#include "platform/quicktime/image_exporters/pass_on.h"
#include "platform/quicktime/image_exporters/raw_rows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <openjpeg.h>
#include <thread>

namespace qt {
namespace {

constexpr std::array<OSType, 4> kTypes = {Code("jp2 "), Code("mjp2"), Code("JP2 "), Code("MJP2")};
constexpr std::array<std::int32_t, 3> kDepths = {24, 32, 40};
constexpr std::int32_t kLossless = 1024;
constexpr std::int32_t kNormalQuality = 512;
constexpr std::int32_t kTileSide = 1024;

/// What the encoder aims at.
struct Aim {
    std::int32_t quality;
    std::uint32_t size; ///< of the codestream in bytes; 0: goes by the quality
    bool is_reversible; ///< with all its bytes a codestream loses nothing
};

std::uint32_t ComponentsOf(const PixelImage& image, std::int32_t depth) {
    switch (depth) {
    case 32: return 4;
    case 33:
    case 34:
    case 36:
    case 40: return 1;
    case 0: return image.has_alpha ? 4 : image.is_grey ? 1 : 3;
    default: return 3;
    }
}

struct DestroyImage {
    void operator()(opj_image_t* image) const { opj_image_destroy(image); }
};
using OpjImage = std::unique_ptr<opj_image_t, DestroyImage>;
// The library's stream and codec types are void*, passed by pointer.
using Stream = std::unique_ptr<opj_stream_t, void (*)(opj_stream_t*)>;
using Codec = std::unique_ptr<opj_codec_t, void (*)(opj_codec_t*)>;

/// What an image of so many components is to the library, without its pixels.
OpjImage Describe(const PixelImage& image, std::uint32_t count) {
    const auto width = static_cast<std::uint32_t>(image.width());
    const auto height = static_cast<std::uint32_t>(image.height());
    std::array<opj_image_cmptparm_t, 4> parameters{};
    for (opj_image_cmptparm_t& parameter : parameters) {
        parameter.dx = parameter.dy = 1;
        parameter.w = width;
        parameter.h = height;
        parameter.prec = 8;
    }
    OpjImage made(
        opj_image_tile_create(count, parameters.data(), count == 1 ? OPJ_CLRSPC_GRAY : OPJ_CLRSPC_SRGB));
    if (made == nullptr) return made;
    made->x1 = width;
    made->y1 = height;
    if (count == 4) made->comps[3].alpha = 1;
    return made;
}

/// Takes the samples of a part of the image, component after component; the grey of one component is its red.
void TakeSamples(const PixelImage& image, const Rect& part, std::uint32_t count, std::vector<OPJ_BYTE>& out) {
    constexpr std::array<unsigned, 4> kShifts = {16, 8, 0, 24};
    const auto width = static_cast<std::size_t>(part.right - part.left);
    const std::size_t plane = width * static_cast<std::size_t>(part.bottom - part.top);
    std::vector<std::uint32_t> scratch(static_cast<std::size_t>(image.width()));
    out.resize(plane * count);
    for (std::int32_t y = part.top; y < part.bottom; ++y) {
        const std::uint32_t* row = count == 4 ? image.Row(y) : OpaqueRow(image, y, scratch.data());
        const std::uint32_t* pixels = row + part.left;
        for (std::uint32_t component = 0; component < count; ++component) {
            OPJ_BYTE* samples = &out[component * plane + static_cast<std::size_t>(y - part.top) * width];
            const unsigned shift = kShifts[component];
            for (std::size_t x = 0; x < width; ++x) samples[x] = static_cast<OPJ_BYTE>(pixels[x] >> shift);
        }
    }
}

/// The greys of an image, those of a colour image being its luminance.
ComponentResult MakeGrey(const PixelImage& image, std::int32_t depth, PixelImage& out) {
    IndexedImage grey{};
    if (const auto code = Quantise(image, depth > 32 ? depth : 40, grey); code != noErr) return code;
    if (const auto code = out.Allocate(image.width(), image.height()); code != noErr) return code;
    for (std::int32_t y = 0; y < image.height(); ++y) {
        const std::uint8_t* indices =
            &grey.indices[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width())];
        std::transform(indices, indices + image.width(), out.Row(y),
                       [&](std::uint8_t index) { return grey.palette[index]; });
    }
    return noErr;
}

struct Output {
    EncodedBytes& bytes;
    std::size_t begin;
    std::size_t at;
};

OPJ_SIZE_T WriteOutput(void* bytes, OPJ_SIZE_T count, void* data) {
    Output& output = *static_cast<Output*>(data);
    const auto* first = static_cast<const std::byte*>(bytes);
    try {
        if (output.at + count > output.bytes.size()) output.bytes.resize(output.at + count);
    } catch (const std::bad_alloc&) {
        return static_cast<OPJ_SIZE_T>(-1);
    }
    std::copy_n(first, count, output.bytes.begin() + static_cast<std::ptrdiff_t>(output.at));
    output.at += count;
    return count;
}

OPJ_OFF_T SkipOutput(OPJ_OFF_T count, void* data) {
    static_cast<Output*>(data)->at += static_cast<std::size_t>(count);
    return count;
}

OPJ_BOOL SeekOutput(OPJ_OFF_T offset, void* data) {
    Output& output = *static_cast<Output*>(data);
    output.at = output.begin + static_cast<std::size_t>(offset);
    return OPJ_TRUE;
}

/// The signal-to-noise ratio for a quality: 40 dB, which hardly shows, at the normal one.
float DecibelsOf(std::int32_t quality) {
    return 25.0F + 30.0F * static_cast<float>(std::clamp(quality, 0, 1023)) / 1023.0F;
}

void SetAim(const opj_image_t& image, const Aim& aim, opj_cparameters_t& parameters) {
    parameters.tcp_numlayers = 1;
    parameters.irreversible = aim.is_reversible ? 0 : 1;
    if (aim.size > 0) {
        const double plain = static_cast<double>(image.x1) * image.y1 * image.numcomps;
        parameters.cp_disto_alloc = 1;
        parameters.tcp_rates[0] = static_cast<float>(std::max(plain / aim.size, 1.0));
    } else if (aim.is_reversible) {
        parameters.cp_disto_alloc = 1;
        parameters.tcp_rates[0] = 0.0F; // no limit
    } else {
        parameters.cp_fixed_quality = 1;
        parameters.tcp_distoratio[0] = DecibelsOf(aim.quality);
    }
}

/// How often the wavelet halves an image: the library refuses more resolutions than its sides have.
int ResolutionsOf(const opj_image_t& image) {
    constexpr int kUsual = 6;
    int count = 1;
    while (count < kUsual && (std::min(image.x1, image.y1) >> count) > 0) ++count;
    return count;
}

/// Encodes the image tile by tile, as the library takes four bytes for each sample of a tile and more.
bool EncodeTiles(const PixelImage& image, opj_codec_t* codec, opj_stream_t* stream,
                 std::uint32_t components) {
    std::vector<OPJ_BYTE> samples;
    std::uint32_t index = 0;
    for (std::int32_t top = 0; top < image.height(); top += kTileSide) {
        for (std::int32_t left = 0; left < image.width(); left += kTileSide, ++index) {
            const Rect tile = {static_cast<std::int16_t>(top), static_cast<std::int16_t>(left),
                               static_cast<std::int16_t>(std::min(top + kTileSide, image.height())),
                               static_cast<std::int16_t>(std::min(left + kTileSide, image.width()))};
            TakeSamples(image, tile, components, samples);
            const auto size = static_cast<OPJ_UINT32>(samples.size());
            if (opj_write_tile(codec, index, samples.data(), size, stream) == OPJ_FALSE) return false;
        }
    }
    return true;
}

bool EncodeComponents(const PixelImage& image, std::uint32_t components, const Aim& aim, EncodedBytes& out) {
    constexpr std::uint64_t kPixelsWorthThreads = 1 << 17;
    Output output{out, out.size(), out.size()};
    const OpjImage described = Describe(image, components);
    const Stream stream(opj_stream_create(OPJ_J2K_STREAM_CHUNK_SIZE, OPJ_FALSE), opj_stream_destroy);
    const Codec codec(opj_create_compress(OPJ_CODEC_JP2), opj_destroy_codec);
    if (described == nullptr || stream == nullptr || codec == nullptr) return false;
    opj_stream_set_user_data(stream.get(), &output, nullptr);
    opj_stream_set_write_function(stream.get(), WriteOutput);
    opj_stream_set_skip_function(stream.get(), SkipOutput);
    opj_stream_set_seek_function(stream.get(), SeekOutput);
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    SetAim(*described, aim, parameters);
    parameters.numresolution = ResolutionsOf(*described);
    parameters.tcp_mct = components >= 3 ? 1 : 0;
    parameters.tile_size_on = OPJ_TRUE;
    parameters.cp_tdx = std::min(image.width(), kTileSide);
    parameters.cp_tdy = std::min(image.height(), kTileSide);
    if (opj_setup_encoder(codec.get(), &parameters, described.get()) == OPJ_FALSE) return false;
    if (std::uint64_t{described->x1} * described->y1 >= kPixelsWorthThreads) {
        const unsigned threads = std::clamp(std::thread::hardware_concurrency(), 1U, 8U);
        opj_codec_set_threads(codec.get(), static_cast<int>(threads));
    }
    return opj_start_compress(codec.get(), described.get(), stream.get()) != OPJ_FALSE &&
           EncodeTiles(image, codec.get(), stream.get(), components) &&
           opj_end_compress(codec.get(), stream.get()) != OPJ_FALSE;
}

/// A resolution in pixels per metre: a fraction of 16-bit numbers, times a power of ten.
struct PerMetre {
    explicit PerMetre(const std::optional<Fixed>& dots_per_inch) {
        constexpr double kMetresPerInch = 0.0254;
        double value = ResolutionIn(dots_per_inch, kMetresPerInch);
        if (value < 6'000) divisor = 10;
        while (value > 65'535) {
            value /= 10;
            ++exponent;
        }
        numerator = static_cast<std::uint32_t>(std::lround(value * divisor));
    }

    std::uint32_t numerator;
    std::uint32_t divisor = 1;
    std::uint32_t exponent = 0;
};

/// Adds the resolution to the header box, which is the third of the file that begins at `begin`.
void InsertResolution(const ExportSettings& settings, std::size_t begin, EncodedBytes& out) {
    const std::optional<Fixed>& horizontal = settings.horizontal_resolution;
    if (!horizontal || *horizontal <= 0) return;
    const auto& vertical =
        settings.vertical_resolution.value_or(0) > 0 ? settings.vertical_resolution : horizontal;
    const std::array<PerMetre, 2> values = {PerMetre(vertical), PerMetre(horizontal)};
    EncodedBytes box;
    Append32(box, 26);
    Append32(box, Code("res "));
    Append32(box, 18);
    Append32(box, Code("resc"));
    for (const PerMetre& value : values) {
        Append16(box, value.numerator);
        Append16(box, value.divisor);
    }
    Append16(box, values[0].exponent << 8 | values[1].exponent);
    std::size_t at = begin;
    const auto field = [&](std::size_t offset) {
        std::uint32_t value = 0;
        std::memcpy(&value, &out[at + offset], sizeof value);
        return __builtin_bswap32(value);
    };
    while (at + 8 <= out.size() && field(4) != Code("jp2h")) at += std::max(field(0), 8U);
    if (at + 8 > out.size()) return;
    const std::uint32_t size = field(0);
    Replace32(out, at, size + static_cast<std::uint32_t>(box.size()));
    out.insert(out.begin() + static_cast<std::ptrdiff_t>(at + size), box.begin(), box.end());
}

ComponentResult Write(const PixelImage& image, const ExportSettings& settings, const Aim& aim,
                      EncodedBytes& out) {
    const std::size_t begin = out.size();
    const std::int32_t depth = settings.depth.value_or(0);
    const std::uint32_t components = ComponentsOf(image, depth);
    PixelImage grey;
    if (components == 1) {
        if (const auto code = MakeGrey(image, depth, grey); code != noErr) return code;
    }
    if (!EncodeComponents(components == 1 ? grey : image, components, aim, out)) return memFullErr;
    InsertResolution(settings, begin, out);
    return noErr;
}

/// The library's rate control keeps to a size but for headers: what the first attempt has too much, the next
/// ones aim lower by. Where all that the irreversible form has fits easily, the reversible one goes further.
ComponentResult WriteWithin(const PixelImage& image, const ExportSettings& settings, std::uint32_t most,
                            EncodedBytes& out) {
    constexpr int kMostAttempts = 4;
    constexpr std::uint32_t kLeastAim = 64;
    const std::size_t begin = out.size();
    std::size_t size = 0;
    Aim aim = {0, most, false};
    for (int attempt = 0; attempt == 0 || (size > most && attempt < kMostAttempts); ++attempt) {
        out.resize(begin);
        if (const auto code = Write(image, settings, aim, out); code != noErr) return code;
        size = out.size() - begin;
        const std::size_t excess = size + 16 - std::min<std::size_t>(size, most);
        aim.size = aim.size > excess + kLeastAim ? static_cast<std::uint32_t>(aim.size - excess) : kLeastAim;
    }
    if (size >= most - most / 10) return noErr;
    EncodedBytes finer;
    const bool fits = Write(image, settings, {0, most, true}, finer) == noErr && finer.size() <= most;
    if (fits && finer.size() > size) {
        out.resize(begin);
        out.insert(out.end(), finer.begin(), finer.end());
    }
    return noErr;
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    const std::uint32_t most = settings.target_size.value_or(0);
    if (most > 0) return WriteWithin(image, settings, most, out);
    const std::int32_t quality = settings.quality.value_or(kNormalQuality);
    return Write(image, settings, {quality, 0, quality >= kLossless}, out);
}

/// What has no boxes is no file, and says nothing of resolutions.
bool Transcode(DataSource& source, const ImageDescription& /*description*/, const ExportSettings& settings,
               EncodedBytes& out) {
    Jpeg2000Header header;
    return ReadJpeg2000Header(source, header) == noErr && header.has_boxes &&
           PassOnUnchanged(kJpeg2000Codec, source, settings, out);
}

} // namespace

const ImageExporter kJpeg2000Exporter = {kTypes, "jp2", "JPEG 2000", kDepths,  true,
                                         true,   {},    Encode,      Transcode};

} // namespace qt
