// A look at the PulseAudio server before SDL connects to it.
#pragma once

#include <chrono>

/// How long a server has to answer: it may have to be started first.
inline constexpr std::chrono::milliseconds kPulseServerLimit{5000};

/// Whether there is a server that SDL (2.26) must be kept from: one without any device makes it crash, and
/// for one that does not answer in time it would wait for ever.
bool PulseServerIsUnusable(std::chrono::milliseconds limit = kPulseServerLimit);
