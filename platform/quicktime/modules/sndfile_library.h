// The functions of libsndfile, which stands in a module: with the codecs that it brings, it would take a
// quarter of the start of every program that never sees a sound.
#pragma once

#include "platform/modules/modules.h"

#include <sndfile.h>

namespace qt {

/// libsndfile's functions under their own names, behaving as its manual says. Only the module makes one of
/// these: the addresses are what it is linked to.
struct SndfileLibrary {
    decltype(&sf_close) close = &sf_close;
    decltype(&sf_command) command = &sf_command;
    decltype(&sf_format_check) format_check = &sf_format_check;
    decltype(&sf_open_virtual) open_virtual = &sf_open_virtual;
    decltype(&sf_readf_float) readf_float = &sf_readf_float;
    decltype(&sf_readf_short) readf_short = &sf_readf_short;
    decltype(&sf_seek) seek = &sf_seek;
    decltype(&sf_write_raw) write_raw = &sf_write_raw;
    decltype(&sf_write_short) write_short = &sf_write_short;
};

inline constinit modules::Library<SndfileLibrary> g_sndfile{"sndfile"};

} // namespace qt
