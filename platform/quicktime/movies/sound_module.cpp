#include "platform/quicktime/movies/sound_module.h"

#include "platform/win32/modules.h"

const qt::FfmpegModule* qt::SoundModule() {
    return win32::ModuleTable<FfmpegModule>("ffmpeg");
}

const qt::SndfileLibrary* qt::Sndfile() {
    return win32::ModuleTable<SndfileLibrary>("sndfile");
}

const qt::FluidsynthLibrary* qt::Fluidsynth() {
    return win32::ModuleTable<FluidsynthLibrary>("midi");
}
