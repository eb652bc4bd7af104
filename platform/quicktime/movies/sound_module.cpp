#include "platform/quicktime/movies/sound_module.h"

#include "platform/modules/modules.h"

const qt::FfmpegModule* qt::SoundModule() {
    return modules::Table<FfmpegModule>("ffmpeg");
}
