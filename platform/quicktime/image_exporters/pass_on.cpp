#include "platform/quicktime/image_exporters/pass_on.h"

#include <array>
#include <cstdlib>

namespace qt {
namespace {

/// Files count dots in other units, and round.
bool IsNear(std::optional<Fixed> asked, Fixed there) {
    constexpr std::int64_t kHalf = 1 << 15;
    return !asked || std::abs(std::int64_t{*asked} - there) < kHalf;
}

bool IsAsAsked(const ImageDescription& description, std::uint64_t size, const ExportSettings& settings) {
    return settings.depth.value_or(description.depth) == description.depth &&
           IsNear(settings.horizontal_resolution, description.hRes) &&
           IsNear(settings.vertical_resolution, description.vRes) &&
           (!settings.target_size || size <= *settings.target_size) && !settings.compression_method;
}

} // namespace

bool AppendSource(DataSource& source, EncodedBytes& out) {
    const std::size_t begin = out.size();
    const auto size = static_cast<std::size_t>(source.GetSize());
    out.resize(begin + size);
    const bool is_whole = source.Read(0, std::span(out).subspan(begin)) == size;
    if (!is_whole) out.resize(begin);
    return is_whole;
}

bool PassOnUnchanged(const ImageCodec& codec, DataSource& source, const ExportSettings& settings,
                     EncodedBytes& out) {
    std::array<std::byte, kSniffedBytes> head;
    if (FindImageCodec(std::span(head).first(source.Read(0, head))) != &codec) return false;
    ImageFacts facts;
    return codec.read_facts(source, facts) == noErr && facts.image_count == 1 &&
           IsAsAsked(facts.description, source.GetSize(), settings) && AppendSource(source, out);
}

} // namespace qt
