#include "plugin/playback_defaults.h"

namespace corvane {
namespace {

PlaybackDefaults g_defaults;

} // namespace

PlaybackDefaults& CurrentPlaybackDefaults() {
    return g_defaults;
}

} // namespace corvane
