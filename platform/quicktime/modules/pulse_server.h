// A look at the PulseAudio server before SDL connects to it.
#pragma once

/// Whether a server answers that has no device at all: SDL crashes there (2.26).
bool PulseServerIsBare();
