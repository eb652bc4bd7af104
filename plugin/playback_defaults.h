// How sounds play unless told otherwise: scripts set it, the player applies it.
#pragma once

namespace corvane {

struct PlaybackDefaults {
    float volume = 1;  ///< 1 is full volume
    float tempo = 1;   ///< playback rate
    float balance = 0; ///< -1 left, 1 right
};

/// The process-wide defaults. Host's thread only.
PlaybackDefaults& CurrentPlaybackDefaults();

} // namespace corvane
