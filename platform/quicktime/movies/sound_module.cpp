#include "platform/quicktime/movies/sound_module.h"

#include "platform/win32/modules.h"

const qt::FfmpegModule* qt::SoundModule() {
    return static_cast<const FfmpegModule*>(win32::LoadModule("ffmpeg").table);
}
