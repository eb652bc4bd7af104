#include "platform/quicktime/movie_exporters/sound_settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>

namespace qt {
namespace {

constexpr std::string_view kRate = "rate";
constexpr std::string_view kChannels = "channels";
constexpr std::string_view kSamples = "samples";
constexpr std::string_view kOrder = "order";
constexpr std::string_view kBitRate = "bitrate";
constexpr std::string_view kQuality = "quality";

constexpr std::string_view kBigOrder = "big";
constexpr std::string_view kLittleOrder = "little";

constexpr std::uint32_t kHighestShownRate = 192'000;

struct EncodingName {
    SampleEncoding encoding;
    std::string_view key;
    std::string_view label;
};
constexpr std::array<EncodingName, 9> kEncodings = {{
    {SampleEncoding::kUnsigned8, "uint8", "8 bits, unsigned"},
    {SampleEncoding::kSigned8, "int8", "8 bits"},
    {SampleEncoding::kSigned16, "int16", "16 bits"},
    {SampleEncoding::kSigned24, "int24", "24 bits"},
    {SampleEncoding::kSigned32, "int32", "32 bits"},
    {SampleEncoding::kFloat32, "float32", "32 bits, floating point"},
    {SampleEncoding::kFloat64, "float64", "64 bits, floating point"},
    {SampleEncoding::kMuLaw, "ulaw", "µ-law 2:1"},
    {SampleEncoding::kALaw, "alaw", "A-law 2:1"},
}};

const EncodingName& NameOf(SampleEncoding encoding) {
    return *std::ranges::find(kEncodings, encoding, &EncodingName::encoding);
}

bool IsWithin(const SettingRange& range, std::uint32_t value) {
    return range.most == 0 || (value >= range.least && value <= range.most);
}

std::optional<std::uint32_t> Number(std::string_view digits) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return number;
}

/// The settings with one of them changed; nothing for a key or value that means nothing.
std::optional<SoundSettings> Changed(SoundSettings settings, std::string_view key, std::string_view value) {
    if (key == kSamples) {
        const auto* const name = std::ranges::find(kEncodings, value, &EncodingName::key);
        if (name == kEncodings.end()) return std::nullopt;
        settings.encoding = name->encoding;
        return settings;
    }
    if (key == kOrder) {
        if (value != kBigOrder && value != kLittleOrder) return std::nullopt;
        settings.big_endian = value == kBigOrder;
        return settings;
    }
    const auto number = Number(value);
    if (!number) return std::nullopt;
    if (key == kRate) settings.rate = *number;
    if (key == kChannels) settings.channels = *number;
    if (key == kBitRate) settings.bit_rate = *number;
    if (key == kQuality) settings.quality = *number;
    return settings;
}

using Control = win32::SettingControl;

Control MakeControl(std::string_view key, std::string label, Control::Kind kind, std::string value) {
    Control control;
    control.key = key;
    control.label = std::move(label);
    control.kind = kind;
    control.value = std::move(value);
    return control;
}

Control NumberControl(std::string_view key, std::string label, std::uint32_t value, double least, double most,
                      std::string unit) {
    Control control = MakeControl(key, std::move(label), Control::Kind::kNumber, std::to_string(value));
    control.minimum = least;
    control.maximum = most;
    control.unit = std::move(unit);
    return control;
}

Control RateControl(const SoundFormatChoices& choices, std::uint32_t rate) {
    if (choices.rates.empty())
        return NumberControl(kRate, "Sample rate", rate, 1, std::max(rate, kHighestShownRate), "Hz");
    Control control = MakeControl(kRate, "Sample rate", Control::Kind::kChoice, std::to_string(rate));
    for (const std::uint32_t offered : choices.rates)
        control.choices.push_back({std::to_string(offered), std::to_string(offered) + " Hz"});
    return control;
}

Control SamplesControl(const SoundFormatChoices& choices, SampleEncoding encoding) {
    Control control =
        MakeControl(kSamples, "Samples", Control::Kind::kChoice, std::string(NameOf(encoding).key));
    for (const SampleEncoding offered : choices.encodings)
        control.choices.push_back({std::string(NameOf(offered).key), std::string(NameOf(offered).label)});
    return control;
}

Control OrderControl(bool big_endian) {
    Control control = MakeControl(kOrder, "Byte order", Control::Kind::kChoice,
                                  std::string(big_endian ? kBigOrder : kLittleOrder));
    control.choices = {{std::string(kLittleOrder), "Little-endian"}, {std::string(kBigOrder), "Big-endian"}};
    return control;
}

void AddLine(std::string_view key, std::string_view value, std::string& text) {
    text.append(key).append("=").append(value).append("\r");
}

} // namespace

SoundSettings UsualSettings(const SoundFormatChoices& choices) {
    SoundSettings settings;
    settings.rate = choices.usual_rate;
    settings.channels = std::min(settings.channels, choices.most_channels);
    if (!choices.encodings.empty()) settings.encoding = choices.encodings.front();
    settings.big_endian = choices.order == ByteOrder::kBig;
    settings.bit_rate = choices.bit_rate.usual;
    settings.quality = choices.quality.usual;
    return settings;
}

bool Offers(const SoundFormatChoices& choices, const SoundSettings& settings) {
    const bool rate = choices.rates.empty()
                          ? settings.rate > 0
                          : std::ranges::find(choices.rates, settings.rate) != choices.rates.end();
    const bool encoding = choices.encodings.empty() ||
                          std::ranges::find(choices.encodings, settings.encoding) != choices.encodings.end();
    const bool order =
        choices.order == ByteOrder::kEither || settings.big_endian == (choices.order == ByteOrder::kBig);
    return rate && encoding && order && settings.channels > 0 && settings.channels <= choices.most_channels &&
           IsWithin(choices.bit_rate, settings.bit_rate) && IsWithin(choices.quality, settings.quality);
}

std::string SettingsText(const SoundFormatChoices& choices, const SoundSettings& settings) {
    std::string text;
    AddLine(kRate, std::to_string(settings.rate), text);
    AddLine(kChannels, std::to_string(settings.channels), text);
    if (!choices.encodings.empty()) AddLine(kSamples, NameOf(settings.encoding).key, text);
    if (choices.order == ByteOrder::kEither)
        AddLine(kOrder, settings.big_endian ? kBigOrder : kLittleOrder, text);
    if (choices.bit_rate.most > 0) AddLine(kBitRate, std::to_string(settings.bit_rate), text);
    if (choices.quality.most > 0) AddLine(kQuality, std::to_string(settings.quality), text);
    return text;
}

void ChangeSettings(const SoundFormatChoices& choices, const win32::SettingValues& values,
                    SoundSettings& settings) {
    for (const auto& [key, value] : values) {
        const auto changed = Changed(settings, key, value);
        if (changed && Offers(choices, *changed)) settings = *changed;
    }
}

win32::SettingValues ParseSettingsText(std::string_view text) {
    win32::SettingValues values;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\r'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos)
            values.emplace_back(line.substr(0, equals), line.substr(equals + 1));
    }
    return values;
}

win32::SettingsPage DescribeSettings(const SoundFormatChoices& choices, const SoundSettings& settings) {
    win32::SettingsPage page;
    page.controls.push_back(RateControl(choices, settings.rate));
    page.controls.push_back(
        NumberControl(kChannels, "Channels", settings.channels, 1, choices.most_channels, {}));
    if (choices.encodings.size() > 1) page.controls.push_back(SamplesControl(choices, settings.encoding));
    if (choices.order == ByteOrder::kEither) page.controls.push_back(OrderControl(settings.big_endian));
    if (choices.bit_rate.most > 0)
        page.controls.push_back(NumberControl(kBitRate, "Bit rate", settings.bit_rate, choices.bit_rate.least,
                                              choices.bit_rate.most, "kbit/s"));
    if (choices.quality.most > 0)
        page.controls.push_back(NumberControl(kQuality, "Quality", settings.quality, choices.quality.least,
                                              choices.quality.most, {}));
    return page;
}

} // namespace qt
