// Atom containers: trees of typed, numbered atoms in one block of memory.
//
// The block is one root atom of type 'sean'. An atom is its size in bytes (32 bits), type, number (32 bits),
// 16 bits of zero, how many children it has (16 bits), 32 bits of zero, then its data or its children; all
// big-endian. An atom has data or children.
#pragma once

#include "platform/quicktime/handles.h"

using QTAtomContainer = Handle;
/// Where an atom begins in its container; good until something is inserted before it.
using QTAtom = std::int32_t;
inline constexpr QTAtom kParentAtomIsContainer = 0;

inline constexpr OSErr notLeafAtomErr = -2102;
inline constexpr OSErr invalidAtomContainerErr = -2107;
inline constexpr OSErr invalidAtomErr = -2106;

/// Atoms of a media's input map and of tween samples.
inline constexpr OSType kTrackModifierInput = qt::Code("\0\0in");
inline constexpr OSType kTrackModifierType = qt::Code("\0\0ty");
inline constexpr OSType kInputMapSubInputID = qt::Code("subi");
inline constexpr std::uint32_t kTrackModifierTypeVolume = 3;
inline constexpr OSType kTweenEntry = qt::Code("twen");
inline constexpr OSType kTweenType = qt::Code("twnt");
inline constexpr OSType kTweenData = qt::Code("data");
inline constexpr OSType kTweenStartOffset = qt::Code("twst");
inline constexpr OSType kTweenDuration = qt::Code("twdu");

OSErr QTNewAtomContainer(QTAtomContainer* container);
void QTDisposeAtomContainer(QTAtomContainer container);

/// Adds an atom behind the parent's other children. A parent with data is notLeafAtomErr.
OSErr QTInsertChild(QTAtomContainer container, QTAtom parent, OSType type, std::int32_t id,
                    std::span<const std::byte> data, QTAtom* atom);

/// The index-th child (from 1) of this type (0: any); its number into `id`, when wanted. 0 when there is
/// none.
QTAtom QTFindChildByIndex(QTAtomContainer container, QTAtom parent, OSType type, std::int32_t index,
                          std::int32_t* id);
std::int32_t QTCountChildrenOfType(QTAtomContainer container, QTAtom parent, OSType type);
/// The atom's data, in the container's own memory; empty for an atom with children, or none.
std::span<const std::byte> QTGetAtomData(QTAtomContainer container, QTAtom atom);

namespace qt {

/// The same over bytes that are no handle: data of the first child of this type; empty when there is none.
std::span<const std::byte> FindContainerRoot(std::span<const std::byte> container);

struct ContainerAtom {
    OSType type = 0;
    std::uint32_t id = 0;
    std::span<const std::byte> content; ///< data, or the children one behind the other
};
/// Steps through children: takes the first off `children`; false at their end.
bool NextContainerAtom(std::span<const std::byte>& children, ContainerAtom& atom);
/// Content of the first atom of this type among children.
std::span<const std::byte> FindContainerAtom(std::span<const std::byte> children, OSType type);

} // namespace qt
