// The settings of exporters as text, and the dialog in which they are changed.
#include "platform/quicktime/graphics_exporter_state.h"
#include "platform/win32/dialogs.h"

#include <algorithm>
#include <charconv>

namespace qt {
namespace {

std::string TypeText(OSType type) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(type >> shift & 0xFF);
    return text;
}

std::optional<std::int32_t> Number(std::string_view digits) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return number;
}

bool Offers(std::span<const std::int32_t> values, std::int32_t value) {
    return std::ranges::find(values, value) != values.end();
}

/// Changes one setting; what the dialog does not offer for the format changes nothing.
void Change(const ImageExporter& format, std::string_view key, std::int32_t value, ExportSettings& settings) {
    if (key == "depth" && Offers(format.depths, value)) settings.depth = value;
    if (key == "method" && Offers(format.methods, value)) settings.compression_method = value;
    if (key == "quality" && format.has_quality) settings.quality = std::clamp(value, 0, 1024);
    if (key == "size" && format.has_target_size && value > 0)
        settings.target_size = static_cast<std::uint32_t>(value);
    if (key == "resolution" && value > 0 && value < 32'768) {
        settings.horizontal_resolution = value << 16;
        settings.vertical_resolution = value << 16;
    }
}

void AddLine(std::string_view key, std::int64_t value, std::string& text) {
    text.append(key).append("=").append(std::to_string(value)).append("\r");
}

} // namespace
} // namespace qt

ComponentResult GraphicsExportRequestSettings(GraphicsExportComponent instance) {
    auto* exporter = dynamic_cast<qt::GraphicsExporter*>(instance);
    if (exporter == nullptr) return kBadComponentInstance;
    const std::optional<std::string> answer = win32::AskForSettings();
    if (!answer) return userCanceledErr;
    std::string_view rest = *answer;
    while (!rest.empty()) {
        const std::string_view entry = rest.substr(0, rest.find(','));
        rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
        const std::size_t equals = std::min(entry.find('='), entry.size());
        const auto value = qt::Number(entry.substr(std::min(equals + 1, entry.size())));
        if (value) qt::Change(exporter->format, entry.substr(0, equals), *value, exporter->settings);
    }
    return noErr;
}

ComponentResult GraphicsExportGetSettingsAsText(GraphicsExportComponent instance, std::string* text) {
    auto* exporter = dynamic_cast<qt::GraphicsExporter*>(instance);
    if (exporter == nullptr) return kBadComponentInstance;
    constexpr std::int32_t kNormalQuality = 512;
    const qt::ImageExporter& format = exporter->format;
    const qt::ExportSettings& settings = exporter->settings;
    *text = "format=" + qt::TypeText(format.types.front()) + "\r";
    if (settings.depth) qt::AddLine("depth", *settings.depth, *text);
    if (settings.horizontal_resolution)
        qt::AddLine("resolution", *settings.horizontal_resolution >> 16, *text);
    if (format.has_quality) qt::AddLine("quality", settings.quality.value_or(kNormalQuality), *text);
    if (settings.target_size) qt::AddLine("size", *settings.target_size, *text);
    if (!format.methods.empty())
        qt::AddLine("method", settings.compression_method.value_or(format.methods.front()), *text);
    return noErr;
}
