#include "platform/quicktime/movie_toolbox.h"

#include "platform/quicktime/sound_output/sound_output.h"

#include <dlfcn.h>

namespace {

constexpr OSType kVersionSelector = qt::Code("qtim");
constexpr std::int32_t kVersion = 0x07698000; // 7.6.9, final
constexpr OSErr kUnknownSelector = -5551;

int g_layer_starts = 0;

// pixman never gives back what it allocates when it is loaded, so a plug-in that comes and goes would leave
// that behind each time. It is made to stay instead.
void KeepPixmanLoaded() {
    if (void* pixman = dlopen("libpixman-1.so.0", RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE)) dlclose(pixman);
}

} // namespace

OSErr InitializeQTML(std::int32_t) {
    if (g_layer_starts++ == 0) KeepPixmanLoaded();
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
