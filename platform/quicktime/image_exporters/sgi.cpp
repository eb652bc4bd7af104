// SGI: grey, RGB or RGB with alpha, run-length encoded unless asked otherwise.
#include "platform/quicktime/image_exporters/big_endian.h"
#include "platform/quicktime/image_exporters/opaque_rows.h"
#include "platform/quicktime/image_exporters/pass_on.h"
#include "platform/quicktime/image_exporters/raw_rows.h"

#include <algorithm>
#include <array>

namespace qt {
namespace {

constexpr std::array<OSType, 3> kTypes = {Code(".sgi"), Code(".SGI"), Code("sgi ")};
constexpr std::array<std::int32_t, 3> kDepths = {24, 32, 40};
constexpr std::int32_t kPlainMethod = 1;
constexpr std::int32_t kRunsMethod = 32'773;
constexpr std::array<std::int32_t, 2> kMethods = {kRunsMethod, kPlainMethod};
constexpr std::size_t kHeaderSize = 512;

std::uint32_t ChannelsOf(const PixelImage& image, std::int32_t depth) {
    switch (depth) {
    case 33:
    case 34:
    case 36:
    case 40: return 1;
    case 32: return 4;
    case 0: return image.has_alpha ? 4 : image.is_grey ? 1 : 3;
    default: return 3;
    }
}

void AppendHeader(const PixelImage& image, std::uint32_t channels, bool has_runs, EncodedBytes& out) {
    const std::size_t begin = out.size();
    Append16(out, 0x01DA);
    Append16(out, has_runs ? 0x0101 : 0x0001); // storage, bytes of a sample
    Append16(out, channels == 1 ? 2 : 3);      // dimensions
    Append16(out, static_cast<std::uint32_t>(image.width()));
    Append16(out, static_cast<std::uint32_t>(image.height()));
    Append16(out, channels);
    Append32(out, 0);   // the least sample
    Append32(out, 255); // and the greatest
    out.resize(begin + kHeaderSize);
}

/// Runs of equal samples and samples as they are, at most 127 of either; a 0 at the end.
void AppendRuns(std::span<const std::byte> samples, EncodedBytes& out) {
    constexpr std::size_t kMost = 127;
    constexpr std::size_t kShortestRun = 3;
    const auto append_literals = [&](std::size_t first, std::size_t end) {
        while (first < end) {
            const std::size_t count = std::min(end - first, kMost);
            out.push_back(static_cast<std::byte>(0x80 | count));
            const std::byte* from = samples.data() + first;
            out.insert(out.end(), from, from + count);
            first += count;
        }
    };
    std::size_t literal = 0;
    for (std::size_t x = 0; x < samples.size();) {
        std::size_t end = x + 1;
        while (end < samples.size() && end - x < kMost && samples[end] == samples[x]) ++end;
        if (end - x >= kShortestRun) {
            append_literals(literal, x);
            out.push_back(static_cast<std::byte>(end - x));
            out.push_back(samples[x]);
            literal = end;
        }
        x = end;
    }
    append_literals(literal, samples.size());
    out.push_back(std::byte{0});
}

/// The rows of the channels, from the bottom up.
class RowSource {
public:
    RowSource(const PixelImage& image, std::uint32_t channels, const IndexedImage& grey)
        : image_(image),
          channels_(channels),
          grey_(grey),
          scratch_(static_cast<std::size_t>(image.width())),
          samples_(scratch_.size()) {}

    std::span<const std::byte> Read(std::uint32_t channel, std::int32_t row) {
        constexpr std::array<unsigned, 4> kShifts = {16, 8, 0, 24};
        const std::int32_t y = image_.height() - 1 - row;
        if (channels_ == 1) {
            const std::uint8_t* indices = &grey_.indices[static_cast<std::size_t>(y) * samples_.size()];
            for (std::size_t x = 0; x < samples_.size(); ++x) {
                samples_[x] = static_cast<std::byte>(grey_.palette[indices[x]]);
            }
            return samples_;
        }
        const std::uint32_t* pixels = channels_ == 4 ? image_.Row(y) : OpaqueRow(image_, y, scratch_.data());
        const unsigned shift = kShifts[channel];
        for (std::size_t x = 0; x < samples_.size(); ++x)
            samples_[x] = static_cast<std::byte>(pixels[x] >> shift);
        return samples_;
    }

private:
    const PixelImage& image_;
    std::uint32_t channels_;
    const IndexedImage& grey_;
    std::vector<std::uint32_t> scratch_;
    std::vector<std::byte> samples_;
};

ComponentResult Encode(const PixelImage& image, const ExportSettings& settings, EncodedBytes& out) {
    const std::int32_t depth = settings.depth.value_or(0);
    const std::uint32_t channels = ChannelsOf(image, depth);
    const bool has_runs = settings.compression_method != kPlainMethod;
    IndexedImage grey{};
    if (channels == 1) {
        if (const auto code = Quantise(image, depth > 32 ? depth : 40, grey); code != noErr) return code;
    }
    const auto rows = static_cast<std::uint32_t>(image.height()) * channels;
    const std::size_t begin = out.size();
    out.reserve(begin + kHeaderSize + rows * (static_cast<std::size_t>(image.width()) + 16));
    AppendHeader(image, channels, has_runs, out);
    const std::size_t table = out.size();
    if (has_runs) out.resize(table + std::size_t{rows} * 8);
    RowSource source(image, channels, grey);
    std::size_t entry = table;
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
        for (std::int32_t row = 0; row < image.height(); ++row, entry += 4) {
            const std::span<const std::byte> samples = source.Read(channel, row);
            const std::size_t at = out.size();
            if (!has_runs) {
                out.insert(out.end(), samples.begin(), samples.end());
                continue;
            }
            AppendRuns(samples, out);
            Replace32(out, entry, static_cast<std::uint32_t>(at - begin));
            Replace32(out, entry + std::size_t{rows} * 4, static_cast<std::uint32_t>(out.size() - at));
        }
    }
    return noErr;
}

} // namespace

const ImageExporter kSgiExporter = {
    kTypes, "sgi", "SGI", kDepths, false, false, kMethods, Encode, PassOnUnchanged<kSgiCodec>};

} // namespace qt
