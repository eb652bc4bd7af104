// The functions of FluidSynth, which stands in a module: it brings some sixty libraries along.
#pragma once

#include "platform/modules/modules.h"

#include <fluidsynth.h>

namespace qt {

/// FluidSynth's functions under their own names, behaving as its manual says. Only the module makes one of
/// these: the addresses are what it is linked to.
struct FluidsynthLibrary {
    decltype(&new_fluid_settings) new_settings = &new_fluid_settings;
    decltype(&delete_fluid_settings) delete_settings = &delete_fluid_settings;
    decltype(&fluid_settings_setint) settings_setint = &fluid_settings_setint;
    decltype(&fluid_settings_setnum) settings_setnum = &fluid_settings_setnum;
    decltype(&new_fluid_synth) new_synth = &new_fluid_synth;
    decltype(&delete_fluid_synth) delete_synth = &delete_fluid_synth;
    decltype(&fluid_synth_sfload) sfload = &fluid_synth_sfload;
    decltype(&fluid_synth_noteon) noteon = &fluid_synth_noteon;
    decltype(&fluid_synth_noteoff) noteoff = &fluid_synth_noteoff;
    decltype(&fluid_synth_key_pressure) key_pressure = &fluid_synth_key_pressure;
    decltype(&fluid_synth_cc) cc = &fluid_synth_cc;
    decltype(&fluid_synth_program_change) program_change = &fluid_synth_program_change;
    decltype(&fluid_synth_channel_pressure) channel_pressure = &fluid_synth_channel_pressure;
    decltype(&fluid_synth_pitch_bend) pitch_bend = &fluid_synth_pitch_bend;
    decltype(&fluid_synth_sysex) sysex = &fluid_synth_sysex;
    decltype(&fluid_synth_all_notes_off) all_notes_off = &fluid_synth_all_notes_off;
    decltype(&fluid_synth_write_float) write_float = &fluid_synth_write_float;
};

inline constinit modules::Library<FluidsynthLibrary> g_fluidsynth{"midi"};

} // namespace qt
