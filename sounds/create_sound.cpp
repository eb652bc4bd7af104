#include "sounds/functions.h"

#include "platform/text/utf.h"
#include "plugin/drawing_port.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "sounds/generate_tone.h"
#include "sounds/note_frequency.h"
#include "sounds/sound_results.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {
namespace {

constexpr std::string_view kFailed = "Error generating waveform.";

struct WaveName {
    std::string_view name;
    std::uint16_t wave;
};
constexpr std::array<WaveName, 9> kWaveNames = {{{"sin", kToneSine},
                                                 {"sine", kToneSine},
                                                 {"saw", kToneSawtooth},
                                                 {"sawtooth", kToneSawtooth},
                                                 {"square", kToneSquare},
                                                 {"rectangle", kToneSquare},
                                                 {"silence", kToneSilence},
                                                 {"none", kToneSilence},
                                                 {"noise", kToneNoise}}};

std::optional<std::uint16_t> WaveOf(const std::string& text) {
    constexpr std::size_t kTypeLimit = 255;
    const std::string name = ToLowerAscii(std::string(utf::CutAtCharacter(text, kTypeLimit)));
    for (const WaveName& wave : kWaveNames)
        if (wave.name == name) return wave.wave;
    return std::nullopt;
}

// The decimal number that the text begins with, blanks before it skipped.
std::optional<double> ScanNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n\v\f"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const bool digits = text.find_first_of("0123456789") <= (text.starts_with('.') ? 1U : 0U);
    if (!digits) return std::nullopt; // among others the names of infinity, and of what is no number
    double number = 0;
    const auto scanned = std::from_chars(text.data(), text.data() + text.size(), number);
    if (scanned.ec == std::errc::result_out_of_range) {
        // The only sign that can be left is the exponent's.
        const bool tiny = std::find(text.data(), scanned.ptr, '-') != scanned.ptr;
        number = tiny ? 0 : std::numeric_limits<double>::infinity();
    }
    return negative ? -number : number;
}

// As 16.16 with the fraction cut off. What is out of range stands at the end of the range.
Fixed ToFixed(double number) {
    constexpr double kLargest = std::numeric_limits<Fixed>::max();
    return static_cast<Fixed>(std::clamp(std::trunc(number * 65536), -kLargest, kLargest));
}

std::int32_t ReadDuration(const FM_DataVect& parameters, ToneRequest& request, CVSError& error) {
    constexpr double kTooLong = 32768; // seconds
    const Read<std::string> text = ReadTextParameter(parameters, 1);
    const std::optional<double> seconds = text.code == 0 ? ScanNumber(text.value) : std::nullopt;
    if (!seconds)
        return error.Fail(text.code != 0 ? text.code : kErrorWrongParameter,
                          "Error converting parameter #2 to duration.");
    request.duration = ToFixed(*seconds);
    if (request.duration <= 0 || *seconds >= kTooLong) return error.Fail(kErrorWrongParameter, {});
    return 0;
}

std::int32_t ReadFrequency(const FM_DataVect& parameters, ToneRequest& request, CVSError& error) {
    const Read<std::string> text = ReadTextParameter(parameters, 2);
    const std::optional<Fixed> note = text.code == 0 ? NoteFrequency(text.value) : std::nullopt;
    const std::optional<double> hertz = text.code == 0 && !note ? ScanNumber(text.value) : std::nullopt;
    if (!note && !hertz)
        return error.Fail(text.code != 0 ? text.code : kErrorWrongParameter,
                          "Error converting parameter #3 to frequency.");
    request.frequency = note ? *note : ToFixed(*hertz);
    // The generator can't see a frequency that 16.16 doesn't hold.
    const bool sawtooth = (request.layout & kToneWaveMask) == kToneSawtooth;
    if (sawtooth && hertz && *hertz > request.sample_rate / 65536.0)
        return error.Fail(kErrorWrongParameter, kFailed);
    return 0;
}

FM_Error Create(const FM_DataVect& parameters, FM_Data& result, CVSError& error) {
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count < 1) return error.Fail(kErrorWrongParameter, "This function requires 1 or more parameters.");
    const Read<std::string> type = ReadTextParameter(parameters, 0);
    const std::optional<std::uint16_t> wave = type.code == 0 ? WaveOf(type.value) : std::nullopt;
    if (!wave) return error.Fail(type.code != 0 ? type.code : kErrorWrongParameter, {});
    ToneRequest request;
    request.layout |= *wave;
    if (count > 1 && ReadDuration(parameters, request, error) != 0) return error.HostCode();
    if (count > 2 && ReadFrequency(parameters, request, error) != 0) return error.HostCode();

    const qt::OwnedMovie movie(NewMovie(0));
    std::int32_t code = AddTones(movie.get(), {&request, 1});
    if (code != 0) return error.Fail(code, kFailed);
    code = PutSoundResourceResult(result, movie.get());
    if (code != 0) return error.Fail(code, "Could not set sound container.");
    error.SetCode(0);
    return kFM_ErrorNone;
}

} // namespace

FM_Error CreateSound(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_CreateSound");
    const qt::CurrentPort port(DrawingPort());
    if (Create(parameters, result, error) != kFM_ErrorNone) ClearResult(result);
    return error.HostCode();
}

} // namespace corvane
