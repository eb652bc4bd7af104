// The module that compressed sounds need.
#pragma once

#include "platform/quicktime/modules/ffmpeg_module.h"

namespace qt {

/// Decodes and encodes compressed sound, and changes rates. Loaded at the first call; null when it can't be.
const FfmpegModule* SoundModule();

} // namespace qt
