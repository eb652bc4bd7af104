// The modules that sounds need.
#pragma once

#include "platform/quicktime/modules/ffmpeg_module.h"
#include "platform/quicktime/modules/fluidsynth_library.h"
#include "platform/quicktime/modules/sndfile_library.h"

namespace qt {

/// Decodes and encodes compressed sound, and changes rates. Loaded at the first call; null when it can't be.
const FfmpegModule* SoundModule();

/// The library of uncompressed sound files. Loaded at the first call; null when it can't be.
const SndfileLibrary* Sndfile();

/// The synthesiser of MIDI files. Loaded at the first call; null when it can't be.
const FluidsynthLibrary* Fluidsynth();

} // namespace qt
