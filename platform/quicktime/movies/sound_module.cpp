#include "platform/quicktime/movies/sound_module.h"

#include "platform/win32/modules.h"

const qt::FfmpegModule* qt::SoundModule() {
    return static_cast<const FfmpegModule*>(win32::LoadModule("ffmpeg").table);
}

const qt::SndfileLibrary* qt::Sndfile() {
    return static_cast<const SndfileLibrary*>(win32::LoadModule("sndfile").table);
}

const qt::FluidsynthLibrary* qt::Fluidsynth() {
    return static_cast<const FluidsynthLibrary*>(win32::LoadModule("midi").table);
}
