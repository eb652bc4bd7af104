#include "platform/quicktime/data_source.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qt {
namespace {

std::size_t CopyFrom(std::span<const std::byte> bytes, std::uint64_t offset, std::span<std::byte> buffer) {
    if (offset >= bytes.size()) return 0;
    const auto count = std::min(buffer.size(), bytes.size() - static_cast<std::size_t>(offset));
    if (count > 0) std::memcpy(buffer.data(), bytes.data() + offset, count);
    return count;
}

OSErr FromErrno(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR: return fnfErr;
    case EACCES:
    case EPERM: return permErr;
    case EMFILE:
    case ENFILE: return tmfoErr;
    default: return ioErr;
    }
}

class FileSource final : public DataSource {
public:
    FileSource() = default;
    ~FileSource() override {
        if (descriptor_ >= 0) ::close(descriptor_);
    }

    OSErr Open(const std::string& path) {
        // Without O_NONBLOCK the open itself would wait on a pipe that nobody writes to.
        descriptor_ = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        if (descriptor_ < 0) return FromErrno(errno);
        struct stat status {};
        if (::fstat(descriptor_, &status) != 0) return ioErr;
        if (!S_ISREG(status.st_mode)) return notAFileErr;
        size_ = static_cast<std::uint64_t>(status.st_size);
        return noErr;
    }

    [[nodiscard]] std::uint64_t GetSize() const noexcept override { return size_; }

    std::size_t Read(std::uint64_t offset, std::span<std::byte> buffer) noexcept override {
        if (buffer.size() >= buffer_.size()) return ReadFile(offset, buffer);
        if (offset < buffered_at_ || offset + buffer.size() > buffered_at_ + buffered_) {
            buffered_ = ReadFile(offset, buffer_);
            buffered_at_ = offset;
        }
        return CopyFrom({buffer_.data(), buffered_}, offset - buffered_at_, buffer);
    }

private:
    std::size_t ReadFile(std::uint64_t offset, std::span<std::byte> buffer) const noexcept {
        return ReadFileAt(descriptor_, size_, offset, buffer);
    }

    int descriptor_ = -1;
    std::uint64_t size_ = 0;
    std::uint64_t buffered_at_ = 0;
    std::size_t buffered_ = 0;
    std::array<std::byte, 4096> buffer_;
};

class BytesInMemory final : public DataSource {
public:
    explicit BytesInMemory(std::span<const std::byte> bytes) : bytes_(bytes) {}
    explicit BytesInMemory(std::vector<std::byte> bytes) : owned_(std::move(bytes)), bytes_(owned_) {}
    [[nodiscard]] std::uint64_t GetSize() const noexcept override { return bytes_.size(); }
    std::size_t Read(std::uint64_t offset, std::span<std::byte> buffer) noexcept override {
        return CopyFrom(bytes_, offset, buffer);
    }
    [[nodiscard]] std::span<const std::byte> InMemory() const noexcept override { return bytes_; }

private:
    std::vector<std::byte> owned_;
    std::span<const std::byte> bytes_;
};

} // namespace

std::size_t ReadFileAt(int descriptor, std::uint64_t end, std::uint64_t offset,
                       std::span<std::byte> buffer) noexcept {
    std::size_t done = 0;
    while (done < buffer.size() && offset + done < end) {
        const std::uint64_t wanted = std::min<std::uint64_t>(buffer.size() - done, end - offset - done);
        const auto count = ::pread(descriptor, buffer.data() + done, static_cast<std::size_t>(wanted),
                                   static_cast<off_t>(offset + done));
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    return done;
}

OpenedSource OpenFileSource(const std::string& unix_path) {
    auto source = std::make_unique<FileSource>();
    const OSErr code = source->Open(unix_path);
    if (code != noErr) return {code, nullptr};
    return {noErr, std::move(source)};
}

std::unique_ptr<DataSource> MemorySource(std::span<const std::byte> bytes) {
    return std::make_unique<BytesInMemory>(bytes);
}

std::unique_ptr<DataSource> MemorySource(std::vector<std::byte> bytes) {
    return std::make_unique<BytesInMemory>(std::move(bytes));
}

} // namespace qt
