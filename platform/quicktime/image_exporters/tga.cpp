// TGA: rows from the top down, run-length encoded unless asked otherwise.
#include "platform/quicktime/image_exporters/opaque_rows.h"
#include "platform/quicktime/image_exporters/pass_on.h"
#include "platform/quicktime/image_exporters/raw_rows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code("TPIC"), Code("tga "), Code("TGA ")};
constexpr std::array<std::int32_t, 5> kDepths = {24, 32, 16, 8, 40};
constexpr std::int32_t kPlainMethod = 1;
constexpr std::int32_t kRunsMethod = 32'773;
constexpr std::array<std::int32_t, 2> kMethods = {kRunsMethod, kPlainMethod};

enum Kind : unsigned { kPaletted = 1, kTrueColour = 2, kGreyScale = 3, kWithRuns = 8 };

/// How a depth is stored.
struct Form {
    std::int32_t quantised; ///< depth for Quantise, 0 for none
    unsigned bits;
    Kind kind;
};

Form FormOf(const PixelImage& image, std::int32_t depth) {
    switch (depth) {
    case 1:
    case 2:
    case 4:
    case 8: return {depth, 8, kPaletted};
    case 33:
    case 34:
    case 36:
    case 40: return {depth, 8, kGreyScale};
    case 16: return {0, 16, kTrueColour};
    case 24: return {0, 24, kTrueColour};
    case 32: return {0, 32, kTrueColour};
    default: break;
    }
    if (image.has_alpha) return {0, 32, kTrueColour};
    return image.is_grey ? Form{40, 8, kGreyScale} : Form{0, 24, kTrueColour};
}

void AppendHeader(const PixelImage& image, const Form& form, bool has_runs, std::size_t colours,
                  EncodedBytes& out) {
    constexpr unsigned kFromTop = 0x20;
    const bool has_alpha = form.bits == 32 || (form.bits == 16 && image.has_alpha);
    const unsigned alpha_bits = !has_alpha ? 0 : form.bits == 32 ? 8 : 1;
    const bool has_map = form.kind == kPaletted;
    const auto byte = [&](unsigned value) { out.push_back(static_cast<std::byte>(value)); };
    byte(0); // no text
    byte(has_map ? 1 : 0);
    byte(form.kind | (has_runs ? kWithRuns : 0U));
    AppendLittle16(out, 0);
    AppendLittle16(out, has_map ? static_cast<std::uint32_t>(colours) : 0);
    byte(has_map ? 24 : 0);
    AppendLittle32(out, 0); // the position on the screen
    AppendLittle16(out, static_cast<std::uint32_t>(image.width()));
    AppendLittle16(out, static_cast<std::uint32_t>(image.height()));
    byte(form.bits);
    byte(kFromTop | alpha_bits);
}

void Store16(const PixelImage& image, const std::uint32_t* pixels, std::byte* stored) {
    for (std::int32_t x = 0; x < image.width(); ++x, stored += 2) {
        const auto five = [](std::uint32_t value) { return (value * 31 + 127) / 255; };
        const std::uint32_t pixel = pixels[x];
        const std::uint32_t alpha = image.has_alpha && Alpha(pixel) >= 128 ? 0x8000 : 0;
        const std::uint32_t word =
            alpha | five(Red(pixel)) << 10 | five(Green(pixel)) << 5 | five(Blue(pixel));
        stored[0] = static_cast<std::byte>(word);
        stored[1] = static_cast<std::byte>(word >> 8);
    }
}

/// A row as packets: runs of equal pixels, and pixels as they are, at most 128 of either.
template <std::size_t kSize>
void AppendPackets(std::span<const std::byte> row, EncodedBytes& out) {
    constexpr std::size_t kMost = 128;
    const std::size_t count = row.size() / kSize;
    const auto same = [&](std::size_t left, std::size_t right) {
        return std::memcmp(&row[left * kSize], &row[right * kSize], kSize) == 0;
    };
    const auto append = [&](std::size_t head, std::size_t first, std::size_t pixels) {
        out.push_back(static_cast<std::byte>(head));
        const std::byte* from = row.data() + first * kSize;
        out.insert(out.end(), from, from + pixels * kSize);
    };
    std::size_t literal = 0; ///< the first pixel that is not written yet
    std::size_t x = 0;
    while (x < count) {
        std::size_t end = x + 1;
        while (end < count && end - x < kMost && same(x, end)) ++end;
        const bool is_run = end - x >= (kSize == 1 ? 3 : 2);
        if (!is_run) end = x + 1;
        if (x > literal && (is_run || x - literal == kMost)) {
            append(x - literal - 1, literal, x - literal);
            literal = x;
        }
        if (is_run) {
            append(127 + end - x, x, 1);
            literal = end;
        }
        x = end;
    }
    if (count > literal) append(count - literal - 1, literal, count - literal);
}

void AppendRow(std::span<const std::byte> row, unsigned bits, bool has_runs, EncodedBytes& out) {
    if (!has_runs) {
        out.insert(out.end(), row.begin(), row.end());
    } else if (bits == 8) {
        AppendPackets<1>(row, out);
    } else if (bits == 16) {
        AppendPackets<2>(row, out);
    } else if (bits == 24) {
        AppendPackets<3>(row, out);
    } else {
        AppendPackets<4>(row, out);
    }
}

/// The file's end as the second version of the format has it; without it some readers take the data for junk.
void AppendFooter(EncodedBytes& out) {
    using namespace std::string_view_literals;
    constexpr auto kFooter = "\0\0\0\0\0\0\0\0TRUEVISION-XFILE.\0"sv;
    const auto bytes = std::as_bytes(std::span(kFooter));
    out.insert(out.end(), bytes.begin(), bytes.end());
}

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    const Form form = FormOf(image, settings.depth.value_or(0));
    const bool has_runs = settings.compression_method != kPlainMethod;
    IndexedImage indexed{};
    if (form.quantised != 0) {
        if (const auto code = QuantiseOpaque(image, form.quantised, indexed); code != noErr) return code;
    }
    AppendHeader(image, form, has_runs, indexed.palette.size(), out);
    if (form.kind == kPaletted) {
        const std::size_t at = out.size();
        out.resize(at + indexed.palette.size() * 3);
        StoreBgr(indexed.palette.data(), static_cast<std::int32_t>(indexed.palette.size()), &out[at]);
    } else if (form.kind == kGreyScale) {
        for (std::uint8_t& index : indexed.indices)
            index = static_cast<std::uint8_t>(Red(indexed.palette[index]));
    }
    const auto width = static_cast<std::size_t>(image.width());
    std::vector<std::byte> stored(width * form.bits / 8);
    std::vector<std::uint32_t> scratch(width);
    out.reserve(out.size() + stored.size() * static_cast<std::size_t>(image.height()) + 1024);
    for (std::int32_t y = 0; y < image.height(); ++y) {
        switch (form.bits) {
        case 8:
            std::memcpy(stored.data(), &indexed.indices[static_cast<std::size_t>(y) * width], width);
            break;
        case 16: Store16(image, image.Row(y), stored.data()); break;
        case 24: StoreBgr(OpaqueRow(image, y, scratch.data()), image.width(), stored.data()); break;
        default: std::memcpy(stored.data(), image.Row(y), stored.size());
        }
        AppendRow(stored, form.bits, has_runs, out);
    }
    AppendFooter(out);
    return noErr;
}

} // namespace

const ImageExporter kTgaExporter = {
    kTypes, "tga", "TGA", kDepths, false, false, kMethods, Encode, PassOnUnchanged<kTgaCodec>};

} // namespace qt
