#include "sounds/mp3_parameter.h"

#include "plugin/parameters.h"
#include "sounds/sound_parameter.h"
#include "sounds/sound_track.h"

namespace corvane {
namespace {

bool IsMp3Name(const std::string& name) {
    constexpr std::string_view kEnd = "mp3";
    return name.size() > kEnd.size() && ToLowerAscii(name.substr(name.size() - kEnd.size())) == kEnd;
}

} // namespace

Mp3File Mp3FileOf(const FM_DataVect& parameters, std::int32_t index) {
    qt::OwnedMovie movie;
    if (const std::int32_t code = OpenSoundParameter(parameters, index, movie); code != 0) return {code, {}};
    if (movie == nullptr) return {kNotAnMp3, {}};
    XFileSpec file;
    if (const std::int32_t code = MovieFileOf(movie.get(), file); code != 0) return {code, {}};
    if (!IsMp3Name(file.name)) return {kNotAnMp3, {}};
    return {0, file.GetNativePathW()};
}

} // namespace corvane
