// Decompression sequences, which draw the frames of an effect.
#pragma once

#include "platform/quicktime/movies/atom_containers.h"
#include "platform/quicktime/ports.h"

/// Atoms of a parameter set that say where an effect's sources come from: the one with number n has the name,
/// a four-character code, of the data source for the effect's n-th image.
inline constexpr OSType kEffectDataSourceType = qt::Code("src ");

namespace qt {
struct EffectSequence;
}
using ImageSequence = qt::EffectSequence*;

/// Begins a sequence of frames drawn into a port of 32 bits with pixels as the parameter set says, of the
/// port's size. Set and port stay the caller's and outlive the sequence. paramErr for another port.
OSErr DecompressSequenceBeginS(ImageSequence* sequence, QTAtomContainer parameters, GWorldPtr port);
/// Gives the sequence a data source of that name: a port of 32 bits with pixels, which stays the caller's and
/// outlives the sequence.
OSErr CDSequenceNewDataSource(ImageSequence sequence, OSType name, GWorldPtr source);
/// Draws a frame. A set without an effect, with one that is unknown, or with one that has fewer sources than
/// it needs, draws the first source unchanged. paramErr when there is none, or it has another size than the
/// frame.
OSErr DecompressSequenceFrameWhen(ImageSequence sequence);
/// Null is allowed.
void CDSequenceEnd(ImageSequence sequence);

namespace qt {

struct SequenceEnder {
    void operator()(ImageSequence sequence) const { CDSequenceEnd(sequence); }
};

/// Owner of a sequence.
using OwnedSequence = std::unique_ptr<EffectSequence, SequenceEnder>;

} // namespace qt
