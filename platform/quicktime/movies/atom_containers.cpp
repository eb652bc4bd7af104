#include "platform/quicktime/movies/atom_containers.h"

#include "platform/quicktime/movies/atoms.h"

#include <algorithm>
#include <cstring>

namespace qt {
namespace {

constexpr std::size_t kHeader = 20;
constexpr std::size_t kChildCount = 14;

/// The whole atom at an offset; empty when none fits there.
std::span<const std::byte> AtomAt(std::span<const std::byte> container, QTAtom atom) {
    const auto rest = Tail(container, static_cast<std::size_t>(std::max(atom, 0)));
    const std::size_t size = BigEndian32(rest, 0);
    return size >= kHeader && size <= rest.size() ? rest.first(size) : std::span<const std::byte>();
}

std::span<const std::byte> ChildrenOf(std::span<const std::byte> container, QTAtom parent) {
    const auto atom = AtomAt(container, parent);
    return BigEndian16(atom, kChildCount) > 0 ? Tail(atom, kHeader) : std::span<const std::byte>();
}

void Put32At(std::span<std::byte> bytes, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) bytes[offset + i] = static_cast<std::byte>(value >> (24 - 8 * i));
}

} // namespace

std::span<const std::byte> FindContainerRoot(std::span<const std::byte> container) {
    return ChildrenOf(container, kParentAtomIsContainer);
}

bool NextContainerAtom(std::span<const std::byte>& children, ContainerAtom& atom) {
    const auto whole = AtomAt(children, 0);
    if (whole.empty()) return false;
    atom = {BigEndian32(whole, 4), BigEndian32(whole, 8), Tail(whole, kHeader)};
    children = Tail(children, whole.size());
    return true;
}

std::span<const std::byte> FindContainerAtom(std::span<const std::byte> children, OSType type) {
    for (ContainerAtom atom; NextContainerAtom(children, atom);)
        if (atom.type == type) return atom.content;
    return {};
}

} // namespace qt

OSErr QTNewAtomContainer(QTAtomContainer* container) {
    qt::AtomWriter root;
    root.Put32(qt::kHeader);
    root.Put32(qt::Code("sean"));
    root.Put32(1);
    root.Zeros(8);
    const qt::Bytes bytes = root.Take();
    return PtrToHand(bytes.data(), container, static_cast<Size>(bytes.size()));
}

void QTDisposeAtomContainer(QTAtomContainer container) {
    DisposeHandle(container);
}

OSErr QTInsertChild(QTAtomContainer container, QTAtom parent, OSType type, std::int32_t id,
                    std::span<const std::byte> data, QTAtom* atom) {
    const std::span<const std::byte> bytes = qt::HandleBytes(container);
    const auto whole = qt::AtomAt(bytes, parent);
    if (whole.empty()) return bytes.empty() ? invalidAtomContainerErr : invalidAtomErr;
    const std::uint32_t children = qt::BigEndian16(whole, qt::kChildCount);
    if (children == 0 && whole.size() > qt::kHeader) return notLeafAtomErr;
    if (children == 0xFFFF) return invalidAtomErr;
    const std::size_t at = static_cast<std::size_t>(parent) + whole.size();
    const std::size_t added = qt::kHeader + data.size();
    const std::size_t old_size = bytes.size();
    const qt::Bytes copy(data.begin(), data.end()); // `data` may lie in the container, which moves
    SetHandleSize(container, static_cast<Size>(old_size + added));
    if (const OSErr code = MemError(); code != noErr) return code;
    const auto all = qt::HandleBytes(container);
    std::memmove(all.data() + at + added, all.data() + at, old_size - at);
    // Every atom around the new one grows, from the root down to the parent.
    for (std::size_t around = 0;;) {
        const std::uint32_t size = qt::BigEndian32(all, around);
        qt::Put32At(all, around, size + static_cast<std::uint32_t>(added));
        if (around == static_cast<std::size_t>(parent)) break;
        std::size_t child = around + qt::kHeader;
        while (child + qt::BigEndian32(all, child) <= static_cast<std::size_t>(parent))
            child += qt::BigEndian32(all, child);
        around = child;
    }
    qt::AtomWriter header;
    header.Put32(static_cast<std::uint32_t>(added));
    header.Put32(type);
    header.Put32(static_cast<std::uint32_t>(id));
    header.Zeros(8);
    header.Put(copy);
    std::ranges::copy(header.Take(), all.begin() + static_cast<std::ptrdiff_t>(at));
    const std::size_t count_at = static_cast<std::size_t>(parent) + qt::kChildCount;
    all[count_at] = static_cast<std::byte>((children + 1) >> 8);
    all[count_at + 1] = static_cast<std::byte>(children + 1);
    if (atom != nullptr) *atom = static_cast<QTAtom>(at);
    return noErr;
}

QTAtom QTFindChildByIndex(QTAtomContainer container, QTAtom parent, OSType type, std::int32_t index,
                          std::int32_t* id) {
    const std::span<const std::byte> bytes = qt::HandleBytes(container);
    auto children = qt::ChildrenOf(bytes, parent);
    while (!children.empty()) {
        const auto at = static_cast<QTAtom>(children.data() - bytes.data());
        qt::ContainerAtom atom;
        if (!qt::NextContainerAtom(children, atom)) break;
        if ((type != 0 && atom.type != type) || --index != 0) continue;
        if (id != nullptr) *id = static_cast<std::int32_t>(atom.id);
        return at;
    }
    return 0;
}

std::int32_t QTCountChildrenOfType(QTAtomContainer container, QTAtom parent, OSType type) {
    auto children = qt::ChildrenOf(qt::HandleBytes(container), parent);
    std::int32_t count = 0;
    for (qt::ContainerAtom atom; qt::NextContainerAtom(children, atom);)
        if (type == 0 || atom.type == type) ++count;
    return count;
}

std::span<const std::byte> QTGetAtomData(QTAtomContainer container, QTAtom atom) {
    const auto whole = qt::AtomAt(qt::HandleBytes(container), atom);
    return qt::BigEndian16(whole, qt::kChildCount) == 0 ? qt::Tail(whole, qt::kHeader)
                                                        : std::span<const std::byte>();
}
