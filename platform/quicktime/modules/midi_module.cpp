#include "platform/quicktime/modules/fluidsynth_library.h"

extern "C" __attribute__((visibility("default"))) const void* corvane_module() {
    static constexpr qt::FluidsynthLibrary kLibrary;
    // Sounds are only computed here: drivers would look for devices, and messages land on the host's output.
    const char* no_drivers[] = {nullptr};
    fluid_audio_driver_register(no_drivers);
    for (int level = FLUID_PANIC; level < LAST_LOG_LEVEL; ++level)
        fluid_set_log_function(level, nullptr, nullptr);
    return &kLibrary;
}
