#include "platform/quicktime/image_exporters/pass_on.h"

#include <array>
#include <limits>

namespace qt {
namespace {

bool IsAsAsked(const ImageDescription& description, std::uint64_t size, const ExportSettings& settings) {
    constexpr std::uint32_t kAnySize = std::numeric_limits<std::uint32_t>::max();
    return settings.depth.value_or(description.depth) == description.depth &&
           settings.horizontal_resolution.value_or(description.hRes) == description.hRes &&
           settings.vertical_resolution.value_or(description.vRes) == description.vRes &&
           size <= settings.target_size.value_or(kAnySize) && !settings.compression_method;
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

bool PassOnUnchanged(const ImageCodec& codec, DataSource& source, const ImageDescription& description,
                     const ExportSettings& settings, EncodedBytes& out) {
    std::array<std::byte, kSniffedBytes> head;
    if (FindImageCodec(std::span(head).first(source.Read(0, head))) != &codec) return false;
    ImageFacts facts;
    return codec.read_facts(source, facts) == noErr && facts.image_count == 1 &&
           IsAsAsked(description, source.GetSize(), settings) && AppendSource(source, out);
}

} // namespace qt
