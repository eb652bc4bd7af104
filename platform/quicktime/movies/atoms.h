// Atoms in memory: a 32-bit size that counts its header, a type, the data; all numbers big-endian.
#pragma once

#include "platform/quicktime/types.h"

#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace qt {

using Bytes = std::vector<std::byte>;

/// The unsigned number of `size` bytes at `offset`; 0 where the bytes end before it does.
constexpr std::uint64_t BigEndian(std::span<const std::byte> bytes, std::size_t offset, std::size_t size) {
    if (offset > bytes.size() || size > bytes.size() - offset) return 0;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = value << 8 | std::to_integer<std::uint64_t>(bytes[offset + i]);
    return value;
}
constexpr std::uint16_t BigEndian16(std::span<const std::byte> bytes, std::size_t offset) {
    return static_cast<std::uint16_t>(BigEndian(bytes, offset, 2));
}
constexpr std::uint32_t BigEndian32(std::span<const std::byte> bytes, std::size_t offset) {
    return static_cast<std::uint32_t>(BigEndian(bytes, offset, 4));
}

constexpr std::uint32_t LittleEndian32(std::span<const std::byte> bytes, std::size_t offset) {
    return __builtin_bswap32(BigEndian32(bytes, offset));
}

/// The bytes from `offset` on, at most `size`; none when `offset` lies beyond the end.
constexpr std::span<const std::byte> Tail(std::span<const std::byte> bytes, std::size_t offset,
                                          std::size_t size = std::dynamic_extent) {
    if (offset >= bytes.size()) return {};
    bytes = bytes.subspan(offset);
    return size < bytes.size() ? bytes.first(size) : bytes;
}

/// Walks the atoms of a run of bytes. An atom that claims more than there is ends with the bytes; a size
/// below 8 ends the walk.
class AtomWalk {
public:
    explicit AtomWalk(std::span<const std::byte> bytes) : rest_(bytes) {}

    /// Steps to the next atom; false at the end.
    bool Next() {
        if (rest_.size() < 8) return false;
        const std::size_t size = BigEndian32(rest_, 0);
        if (size < 8) return false;
        type_ = BigEndian32(rest_, 4);
        whole_ = Tail(rest_, 0, size);
        rest_ = Tail(rest_, size);
        return true;
    }
    [[nodiscard]] OSType Type() const { return type_; }
    [[nodiscard]] std::span<const std::byte> Data() const { return whole_.subspan(8); }
    [[nodiscard]] std::span<const std::byte> Whole() const { return whole_; } ///< with its header

private:
    std::span<const std::byte> rest_;
    std::span<const std::byte> whole_;
    OSType type_ = 0;
};

/// Data of the first atom of this type; empty when there is none.
inline std::span<const std::byte> FindAtom(std::span<const std::byte> atoms, OSType type) {
    for (AtomWalk walk(atoms); walk.Next();)
        if (walk.Type() == type) return walk.Data();
    return {};
}

/// Appends big-endian numbers and nested atoms to a block.
class AtomWriter {
public:
    void Put8(std::uint8_t value) { Number(value, 1); }
    void Put16(std::uint16_t value) { Number(value, 2); }
    void Put32(std::uint32_t value) { Number(value, 4); }
    void Put64(std::uint64_t value) { Number(value, 8); }
    void Put(std::span<const std::byte> data) { bytes_.insert(bytes_.end(), data.begin(), data.end()); }
    void Put(std::string_view text) { Put(std::as_bytes(std::span(text))); }
    void Zeros(std::size_t count) { bytes_.insert(bytes_.end(), count, std::byte{}); }

    /// Everything that `content` writes becomes the data of one atom.
    template <class Content>
    void Atom(OSType type, Content&& content) {
        const std::size_t start = bytes_.size();
        Put32(0);
        Put32(type);
        content();
        SetSize(start);
    }

    [[nodiscard]] std::size_t Size() const { return bytes_.size(); }
    [[nodiscard]] Bytes Take() { return std::move(bytes_); }

private:
    void Number(std::uint64_t value, int size) {
        for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
            bytes_.push_back(static_cast<std::byte>(value >> shift));
    }
    void SetSize(std::size_t start) {
        const std::size_t size = bytes_.size() - start;
        for (std::size_t i = 0; i < 4; ++i) bytes_[start + i] = static_cast<std::byte>(size >> (24 - 8 * i));
    }

    Bytes bytes_;
};

} // namespace qt
