#include "sounds/sound_info.h"

#include "platform/quicktime/movies/media.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/sound_description.h"
#include "platform/text/utf.h"
#include "plugin/time_text.h"
#include "sounds/bit_rate.h"
#include "sounds/file_format.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

namespace corvane {
namespace {

constexpr std::size_t kTextLimit = 16383;

std::string FourCharacters(OSType code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto character = static_cast<char>(code >> shift);
        text += character >= 0x20 ? character : ' '; // bytes from 0x80 up are negative
    }
    return text;
}

std::string Rounded(double number) {
    char text[400]; // the largest double has 309 digits
    const int length = std::snprintf(text, sizeof text, "%.0f", number);
    return {text, static_cast<std::size_t>(length)};
}

// More units than 32 bits hold, as those of half a day, give way to milliseconds.
std::string Duration(TimeValue time, TimeScale scale) {
    constexpr TimeValue kMost = std::numeric_limits<std::int32_t>::max();
    constexpr TimeScale kMilliseconds = 1000;
    if (time > kMost && scale > 0) {
        time = std::min(time / scale, kMost) * kMilliseconds + time % scale * kMilliseconds / scale;
        scale = kMilliseconds;
    }
    return FormatDuration(static_cast<std::int32_t>(std::min(time, kMost)), scale);
}

// Lines of a list: an indentation, a key, and the value.
class Lines {
public:
    explicit Lines(std::string& text) : text_(text) {}
    void Section(std::string_view line) { text_.append(line).append("\r"); }
    void Value(std::string_view key, std::string_view value) {
        text_.append(key).append(": ").append(value).append("\r");
    }
    void Value(std::string_view key, std::int64_t value) { Value(key, std::to_string(value)); }

private:
    std::string& text_;
};

std::optional<AudioStreamBasicDescription> StreamOf(Handle description) {
    const qt::MemoryHandle property(NewHandle(0));
    AudioStreamBasicDescription stream;
    if (!property || QTSoundDescriptionGetProperty(description, qt::Code("sdes"), qt::Code("asbd"),
                                                   property.get()) != noErr)
        return std::nullopt;
    std::memcpy(&stream, *property.get(), sizeof stream);
    return stream;
}

// Bits of a sample; 0 for a compressed sound that has none.
std::uint32_t SampleBits(const AudioStreamBasicDescription& stream) {
    if (stream.mBitsPerChannel != 0 || stream.mFormatID != qt::Code("alac")) return stream.mBitsPerChannel;
    switch (stream.mFormatFlags) {
    case 1: return 16;
    case 2: return 20;
    case 3: return 24;
    case 4: return 32;
    default: return 0;
    }
}

void AddDescription(Handle description, Lines& lines) {
    SoundDescription fields;
    const auto bytes = qt::HandleBytes(description);
    std::memcpy(&fields, bytes.data(), std::min(bytes.size(), sizeof fields));
    char format[9];
    std::snprintf(format, sizeof format, "%08X", fields.dataFormat);
    lines.Value("      Sample Format", format);

    double rate = fields.sampleRate / 65536.0;
    std::uint32_t channels = static_cast<std::uint16_t>(fields.numChannels);
    std::uint32_t bits = static_cast<std::uint16_t>(fields.sampleSize);
    const auto stream = StreamOf(description);
    if (stream) {
        rate = stream->mSampleRate;
        channels = stream->mChannelsPerFrame;
        bits = SampleBits(*stream);
    }
    lines.Value("      Number of Channels", channels);
    if (!stream || bits != 0) lines.Value("      Sample Size (b)", bits);
    lines.Value("      Sample Rate (Hz)", Rounded(rate));
    const std::optional<double> bit_rate = BitRateOf(description);
    lines.Value("      Bit Rate (kbps)", bit_rate ? Rounded(*bit_rate) : "N/A");
}

std::int32_t AddMedia(Media media, Lines& lines) {
    lines.Section("  Media");
    lines.Value("    Media Duration (s)", Duration(GetMediaDuration(media), GetMediaTimeScale(media)));
    lines.Value("    Media Creation Date (ts)", FormatDateTime(GetMediaCreationTime(media)));
    lines.Value("    Media Modification Date (ts)", FormatDateTime(GetMediaModificationTime(media)));
    lines.Value("    Media Language", GetMediaLanguage(media));
    lines.Value("    Media Quality", GetMediaQuality(media));
    const qt::MemoryHandle description(NewHandle(0));
    if (!description) return memFullErr;
    for (std::int32_t index = 1; index <= GetMediaSampleDescriptionCount(media); ++index) {
        const OSErr code = GetMediaSampleDescription(media, index, description.get());
        if (code != noErr) return code;
        if (index > 1) lines.Section({});
        lines.Section("    Sample Description " + std::to_string(index));
        AddDescription(description.get(), lines);
    }
    return 0;
}

std::int32_t AddTrack(Track track, std::int32_t number, Lines& lines) {
    const Media media = GetTrackMedia(track);
    if (media == nullptr) return GetMoviesError();
    lines.Section("Track " + std::to_string(number));
    lines.Value("  Volume", GetTrackVolume(track));
    lines.Value("  Duration (s)", Duration(GetTrackDuration(track), GetMovieTimeScale(GetTrackMovie(track))));
    lines.Value("  Creation Date (ts)", FormatDateTime(GetTrackCreationTime(track)));
    lines.Value("  Modification Date (ts)", FormatDateTime(GetTrackModificationTime(track)));
    return AddMedia(media, lines);
}

} // namespace

SoundInfo DescribeSounds(Movie movie) {
    const FileFormat file = FileFormatOf(movie);
    if (file.code != 0) return {file.code, {}};
    SoundInfo info;
    Lines lines(info.text);
    lines.Value("Format", FourCharacters(file.format));
    std::int32_t number = 0;
    while (const Track track =
               GetMovieIndTrackType(movie, number + 1, qt::Code("ears"), movieTrackCharacteristic)) {
        if (const std::int32_t code = AddTrack(track, ++number, lines); code != 0) return {code, {}};
    }
    if (number == 0) return {noSoundTrackInMovieErr, {}};
    info.text = utf::CutAtCharacter(info.text, kTextLimit);
    return info;
}

} // namespace corvane
