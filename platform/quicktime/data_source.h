// Bytes that codecs read: a file, memory, or what an address on the web gave.
#pragma once

#include "platform/quicktime/types.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace qt {

/// A run of bytes of known size, read at any offset.
class DataSource {
public:
    DataSource() = default;
    DataSource(const DataSource&) = delete;
    DataSource& operator=(const DataSource&) = delete;
    virtual ~DataSource() = default;

    [[nodiscard]] virtual std::uint64_t GetSize() const noexcept = 0;

    /// Fills the buffer from `offset` on and answers how many bytes it got: fewer than asked at the end of
    /// the data, and where reading fails or a file has become shorter meanwhile. Never throws: codecs call
    /// it from inside C libraries.
    virtual std::size_t Read(std::uint64_t offset, std::span<std::byte> buffer) noexcept = 0;

    /// All the bytes, when they lie in memory anyhow: good as long as the source. Else empty.
    [[nodiscard]] virtual std::span<const std::byte> InMemory() const noexcept { return {}; }
};

/// A part of another source, which must outlive it.
class PartSource final : public DataSource {
public:
    PartSource(DataSource& whole, std::uint64_t offset, std::uint64_t size)
        : whole_(whole), offset_(offset), size_(size) {}

    [[nodiscard]] std::uint64_t GetSize() const noexcept override { return size_; }
    std::size_t Read(std::uint64_t offset, std::span<std::byte> buffer) noexcept override {
        if (offset >= size_) return 0;
        const std::uint64_t count = std::min<std::uint64_t>(buffer.size(), size_ - offset);
        return whole_.Read(offset_ + offset, buffer.first(static_cast<std::size_t>(count)));
    }

private:
    DataSource& whole_;
    std::uint64_t offset_;
    std::uint64_t size_;
};

/// A source, or why there is none. The source is null when the code is not 0.
struct OpenedSource {
    OSErr code = noErr;
    std::unique_ptr<DataSource> source;
};

/// Fills the buffer from `offset` of an open file, but not beyond `end`, and answers how many bytes it got.
std::size_t ReadFileAt(int descriptor, std::uint64_t end, std::uint64_t offset,
                       std::span<std::byte> buffer) noexcept;

/// A regular file. Small reads go through a buffer of some KB, so that a header costs one or two reads.
/// The file is not mapped: one that is cut meanwhile only ends early.
OpenedSource OpenFileSource(const std::string& unix_path);

/// Borrowed memory, which must outlive the source.
std::unique_ptr<DataSource> MemorySource(std::span<const std::byte> bytes);
/// Memory that the source owns.
std::unique_ptr<DataSource> MemorySource(std::vector<std::byte> bytes);

} // namespace qt
