// The parameter set of an effect: an atom container with the effect's type in its "what" atom, an atom for
// each parameter, and "src " atoms that name the sources.
//
// A parameter's atom has the first four characters of the key as its type. Its data, big-endian: numbers
// signed 16.16, whole numbers, choices and toggles 32 bits, colours 16 bits each of red, green and blue.
#pragma once

#include "platform/quicktime/effects/effect.h"
#include "platform/quicktime/movies/atom_containers.h"

#include <optional>

namespace qt {

inline constexpr OSType kParameterWhatName = Code("what");

struct EffectSettings {
    const Effect* effect = nullptr; ///< never null
    EffectValues values;
};

/// Adds the atoms to a set that has none of them yet.
OSErr WriteEffectSettings(const EffectSettings& settings, QTAtomContainer set);
/// Nothing for a set without an effect, or with one that is unknown. Values out of range are brought into it,
/// those that are missing are the standard ones.
std::optional<EffectSettings> ReadEffectSettings(QTAtomContainer set);

} // namespace qt
