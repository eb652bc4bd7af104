// GIF, through giflib: one frame of at most 256 colours, one of them transparent when pixels need it.
#include "platform/quicktime/image_exporters/pass_on.h"
#include "platform/quicktime/image_exporters/raw_rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <gif_lib.h>
#include <memory>
#include <new>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code("GIFf"), Code("gif "), Code("GIF ")};
constexpr std::array<std::int32_t, 8> kDepths = {8, 4, 2, 1, 40, 36, 34, 33};
constexpr std::array<std::int32_t, 2> kMethods = {0, 1}; ///< 1: interlaced

std::int32_t DepthOf(std::int32_t depth) {
    return std::ranges::find(kDepths, depth) != kDepths.end() ? depth : 8;
}

int Append(GifFileType* gif, const GifByteType* bytes, int count) {
    auto& out = *static_cast<EncodedBytes*>(gif->UserData);
    const auto* first = reinterpret_cast<const std::byte*>(bytes);
    try {
        out.insert(out.end(), first, first + count);
    } catch (const std::bad_alloc&) {
        return 0; // the library reports a short write
    }
    return count;
}

struct FreeMap {
    void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};
struct CloseGif {
    void operator()(GifFileType* gif) const { EGifCloseFile(gif, nullptr); }
};

/// The palette, filled up to a power of two as the format wants it.
std::unique_ptr<ColorMapObject, FreeMap> MapOf(const std::vector<std::uint32_t>& palette) {
    const auto size = std::max(std::bit_ceil(palette.size()), std::size_t{2});
    std::unique_ptr<ColorMapObject, FreeMap> map(GifMakeMapObject(static_cast<int>(size), nullptr));
    if (map == nullptr) return map;
    for (std::size_t i = 0; i < size; ++i) {
        const std::uint32_t colour = i < palette.size() ? palette[i] : 0;
        map->Colors[i] = {static_cast<GifByteType>(Red(colour)), static_cast<GifByteType>(Green(colour)),
                          static_cast<GifByteType>(Blue(colour))};
    }
    return map;
}

bool PutTransparency(GifFileType* gif, const std::vector<std::uint32_t>& palette) {
    const auto transparent =
        std::ranges::find_if(palette, [](std::uint32_t colour) { return Alpha(colour) == 0; });
    if (transparent == palette.end()) return true;
    const GraphicsControlBlock control = {DISPOSAL_UNSPECIFIED, false, 0,
                                          static_cast<int>(transparent - palette.begin())};
    std::array<GifByteType, 4> extension{};
    const std::size_t size = EGifGCBToExtension(&control, extension.data());
    return EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(size), extension.data()) == GIF_OK;
}

bool PutRows(GifFileType* gif, IndexedImage& indexed, std::int32_t first, std::int32_t step) {
    for (std::int32_t y = first; y < indexed.height; y += step) {
        std::uint8_t* row =
            indexed.indices.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(indexed.width);
        if (EGifPutLine(gif, row, indexed.width) != GIF_OK) return false;
    }
    return true;
}

bool PutImage(GifFileType* gif, IndexedImage& indexed, bool interlaced, const ColorMapObject* map) {
    if (EGifPutScreenDesc(gif, indexed.width, indexed.height, 8, 0, map) != GIF_OK ||
        !PutTransparency(gif, indexed.palette) ||
        EGifPutImageDesc(gif, 0, 0, indexed.width, indexed.height, interlaced, nullptr) != GIF_OK)
        return false;
    if (!interlaced) return PutRows(gif, indexed, 0, 1);
    constexpr std::array<std::array<std::int32_t, 2>, 4> kPasses = {{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};
    return std::ranges::all_of(kPasses,
                               [&](const auto& pass) { return PutRows(gif, indexed, pass[0], pass[1]); });
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    IndexedImage indexed{};
    if (const auto code = Quantise(image, DepthOf(settings.depth.value_or(8)), indexed); code != noErr)
        return code;
    const auto map = MapOf(indexed.palette);
    std::unique_ptr<GifFileType, CloseGif> gif(EGifOpen(&out, Append, nullptr));
    if (map == nullptr || gif == nullptr) return memFullErr;
    EGifSetGifVersion(gif.get(), true);
    const bool is_put = PutImage(gif.get(), indexed, settings.compression_method == 1, map.get());
    const bool is_closed = EGifCloseFile(gif.release(), nullptr) == GIF_OK; // writes the end
    return is_put && is_closed ? ComponentResult{noErr} : memFullErr;
}

} // namespace

const ImageExporter kGifExporter = {
    kTypes, "gif", "GIF", kDepths, false, false, kMethods, Encode, PassOnUnchanged<kGifCodec>};

} // namespace qt
