// The settings of exporters as text, and the dialog in which they are changed.
#include "platform/quicktime/graphics_exporter_state.h"
#include "platform/quicktime/type_codes.h"
#include "platform/win32/settings_dialog.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace qt {
namespace {

constexpr std::int32_t kNormalQuality = 512;
constexpr Fixed kNormalResolution = 72 << 16;

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

using Control = win32::SettingControl;

Control NumberControl(std::string key, std::string label, std::int64_t value, double minimum,
                      double maximum) {
    return {std::move(key),
            std::move(label),
            Control::Kind::kNumber,
            std::to_string(value),
            minimum,
            maximum,
            1,
            {},
            {}};
}

Control ChoiceControl(std::string key, std::string label, std::span<const std::int32_t> values,
                      std::int32_t chosen, std::string (*name)(std::int32_t)) {
    Control control = {
        std::move(key), std::move(label), Control::Kind::kChoice, std::to_string(chosen), 0, 0, 1, {}, {}};
    for (const std::int32_t value : values) control.choices.push_back({std::to_string(value), name(value)});
    return control;
}

std::string DepthName(std::int32_t depth) {
    constexpr std::int32_t kGrey = 32; // depths above it are as many bits of grey
    if (depth > kGrey) return std::to_string(depth - kGrey) + " bits of grey";
    if (depth <= 8) return std::to_string(depth) + " bits, palette";
    return std::to_string(depth) + " bits";
}

std::string CompressionName(std::int32_t method) {
    switch (method) {
    case 1: return "None";
    case 5: return "LZW";
    case 8: return "Deflate";
    case 32'773: return "PackBits";
    default: return std::to_string(method);
    }
}

std::string InterlaceName(std::int32_t method) {
    return method == 0 ? "Off" : "On";
}

/// The dialog of a format, with its settings as they stand.
win32::SettingsDialog DescribeSettings(const ImageExporter& format, const ExportSettings& settings) {
    win32::SettingsPage page;
    if (!format.depths.empty())
        page.controls.push_back(ChoiceControl("depth", "Depth", format.depths,
                                              settings.depth.value_or(format.depths.front()), DepthName));
    page.controls.push_back(NumberControl("resolution", "Resolution",
                                          settings.horizontal_resolution.value_or(kNormalResolution) >> 16, 1,
                                          32'767));
    page.controls.back().unit = "dpi";
    if (format.has_quality)
        page.controls.push_back(
            NumberControl("quality", "Quality", settings.quality.value_or(kNormalQuality), 0, 1024));
    if (format.has_target_size)
        page.controls.push_back(NumberControl("size", "Size to aim at (0: any)",
                                              settings.target_size.value_or(0), 0,
                                              std::numeric_limits<std::int32_t>::max()));
    if (!format.methods.empty()) {
        const bool interlaces = Offers(format.methods, 0);
        page.controls.push_back(ChoiceControl("method", interlaces ? "Interlaced" : "Compression",
                                              format.methods,
                                              settings.compression_method.value_or(format.methods.front()),
                                              interlaces ? InterlaceName : CompressionName));
    }
    win32::SettingsDialog dialog;
    dialog.title = std::string(format.description) + " Options";
    dialog.pages.push_back(std::move(page));
    return dialog;
}

void AddLine(std::string_view key, std::int64_t value, std::string& text) {
    text.append(key).append("=").append(std::to_string(value)).append("\r");
}

} // namespace
} // namespace qt

ComponentResult GraphicsExportRequestSettings(GraphicsExportComponent instance) {
    auto* exporter = dynamic_cast<qt::GraphicsExporter*>(instance);
    if (exporter == nullptr) return kBadComponentInstance;
    const auto answer = win32::AskForSettings(qt::DescribeSettings(exporter->format, exporter->settings));
    if (!answer) return userCanceledErr;
    for (const auto& [key, text] : *answer) {
        const auto value = qt::Number(text);
        if (value) qt::Change(exporter->format, key, *value, exporter->settings);
    }
    return noErr;
}

ComponentResult GraphicsExportGetSettingsAsText(GraphicsExportComponent instance, std::string* text) {
    auto* exporter = dynamic_cast<qt::GraphicsExporter*>(instance);
    if (exporter == nullptr) return kBadComponentInstance;
    const qt::ImageExporter& format = exporter->format;
    const qt::ExportSettings& settings = exporter->settings;
    *text = "format=" + qt::TextOfCode(format.types.front()) + "\r";
    if (settings.depth) qt::AddLine("depth", *settings.depth, *text);
    if (settings.horizontal_resolution)
        qt::AddLine("resolution", *settings.horizontal_resolution >> 16, *text);
    if (format.has_quality) qt::AddLine("quality", settings.quality.value_or(qt::kNormalQuality), *text);
    if (settings.target_size) qt::AddLine("size", *settings.target_size, *text);
    if (!format.methods.empty())
        qt::AddLine("method", settings.compression_method.value_or(format.methods.front()), *text);
    return noErr;
}
