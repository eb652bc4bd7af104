// The module that decodes compressed sound and changes rates.
#pragma once

#include "platform/quicktime/modules/ffmpeg_module.h"

namespace qt {

/// Loads it at the first call; null when it can't be.
const FfmpegModule* SoundModule();

} // namespace qt
