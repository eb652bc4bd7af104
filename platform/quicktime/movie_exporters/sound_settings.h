// What can be chosen of the sound files that exporters write, and how the choice is kept.
#pragma once

#include "platform/quicktime/movies/pcm.h"
#include "platform/quicktime/types.h"
#include "platform/win32/settings_dialog.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace qt {

struct SoundSettings {
    std::uint32_t rate = 44100; ///< Hz
    std::uint32_t channels = 2;
    SampleEncoding encoding = SampleEncoding::kSigned16;
    bool big_endian = false;
    std::uint32_t bit_rate = 0; ///< kbit/s
    std::uint32_t quality = 0;

    bool operator==(const SoundSettings&) const = default;
};

struct SettingRange {
    std::uint32_t least = 0;
    std::uint32_t most = 0; ///< 0: the format has no such setting
    std::uint32_t usual = 0;
};

enum class ByteOrder : std::uint8_t { kLittle, kBig, kEither };

/// What a format leaves to choose.
struct SoundFormatChoices {
    std::span<const SampleEncoding> encodings = {}; ///< the usual one first; none: left to the encoder
    std::span<const std::uint32_t> rates = {};      ///< Hz; none: any
    std::uint32_t usual_rate = 44100;
    std::uint32_t most_channels = 255;
    ByteOrder order = ByteOrder::kLittle;
    SettingRange bit_rate = {}; ///< kbit/s
    SettingRange quality = {};
};

SoundSettings UsualSettings(const SoundFormatChoices& choices);

/// Whether the format can be written so.
bool Offers(const SoundFormatChoices& choices, const SoundSettings& settings);

/// Lines "key=value", each ended by a carriage return: rate, channels, samples, order, bitrate, quality, as
/// far as the format has them.
std::string SettingsText(const SoundFormatChoices& choices, const SoundSettings& settings);

/// Changes what the values name, under the same keys; those that the format does not offer change nothing.
void ChangeSettings(const SoundFormatChoices& choices, const win32::SettingValues& values,
                    SoundSettings& settings);

win32::SettingValues ParseSettingsText(std::string_view text);

win32::SettingsPage DescribeSettings(const SoundFormatChoices& choices, const SoundSettings& settings);

} // namespace qt
