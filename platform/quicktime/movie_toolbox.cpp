#include "platform/quicktime/movie_toolbox.h"

#include "platform/quicktime/sound_output/sound_output.h"

namespace {

constexpr OSType kVersionSelector = qt::Code("qtim");
constexpr std::int32_t kVersion = 0x07698000; // 7.6.9, final
constexpr OSErr kUnknownSelector = -5551;

int g_layer_starts = 0;

} // namespace

OSErr InitializeQTML(std::int32_t) {
    ++g_layer_starts;
    return 0;
}

OSErr EnterMovies() {
    return g_layer_starts > 0 ? 0 : OSErr{-2005};
}

void ExitMovies() {
    qt::SoundOutput::Get().Close();
}

void TerminateQTML() {
    if (g_layer_starts > 0) --g_layer_starts;
}

OSErr Gestalt(OSType selector, std::int32_t* response) {
    if (selector != kVersionSelector || g_layer_starts == 0) return kUnknownSelector;
    *response = kVersion;
    return 0;
}
