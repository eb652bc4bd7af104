#pragma once

#include "platform/fmwrapper/fmwrapper.h"
#include "plugin/errors.h"
#include "sounds/wave_samples.h"

namespace corvane {

/// Amplifies a sound and makes a WAVE file of it the result. A limit of kNormaliseLimit normalises, whatever
/// the factor. Code and message go into the record;
/// answers the code.
FM_Error AmplifySound(Sound sound, float factor, float limit, FM_Data& result, CVSError& error);

} // namespace corvane
