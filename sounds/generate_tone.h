#pragma once

#include "platform/quicktime/movies/media.h"
#include "sounds/tone_generator.h"

#include <cstdint>

namespace corvane {

/// Computes a tone (see tone_generator.h) and adds it to a sound media that is being edited. `phase`, where
/// not null, is the tone's starting point, and gets that of the tone behind it.
std::int32_t GenerateTone(Media media, const ToneRequest& request, double* phase = nullptr);

} // namespace corvane
