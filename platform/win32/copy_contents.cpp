#include "platform/win32/copy_file.h"
#include "platform/win32/descriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <linux/fs.h>
#include <span>
#include <sys/ioctl.h>
#include <unistd.h>
#include <vector>

namespace win32 {
namespace {

constexpr off_t kSmallFile = off_t{64} * 1024; // read and written in one go, with the fewest system calls
constexpr std::size_t kBufferSize = std::size_t{1024} * 1024;
constexpr std::size_t kKernelStep = std::size_t{1} << 30;
constexpr std::size_t kToEnd = SIZE_MAX;

// Copies from both files' positions, up to `limit` bytes or the end of the source.
int ReadAndWrite(int from, int to, std::size_t limit, std::span<std::byte> buffer) {
    while (limit > 0) {
        const ssize_t count = read(from, buffer.data(), std::min(limit, buffer.size()));
        if (count == 0) return 0;
        if (count < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        if (const int error = WriteAll(to, buffer.first(static_cast<std::size_t>(count)))) return error;
        limit -= static_cast<std::size_t>(count);
    }
    return 0;
}

bool FindsHoles(int file) {
    const bool found = lseek(file, 0, SEEK_HOLE) >= 0;
    lseek(file, 0, SEEK_SET);
    return found;
}

// Copies the parts that hold data; the target gets the same holes.
int CopySparse(int from, int to, off_t size) {
    off_t end = 0;
    for (;;) {
        const off_t start = lseek(from, end, SEEK_DATA);
        if (start < 0) {
            if (errno != ENXIO) return errno;
            return ftruncate(to, size) == 0 ? 0 : errno; // nothing but a hole follows
        }
        end = lseek(from, start, SEEK_HOLE);
        if (end < 0 || lseek(from, start, SEEK_SET) < 0 || lseek(to, start, SEEK_SET) < 0) return errno;
        if (const int error = CopyRange(from, to, static_cast<std::size_t>(end - start))) return error;
    }
}

} // namespace

// Within the kernel; by hand from where the kernel will not.
int CopyRange(int from, int to, std::size_t limit) {
    while (limit > 0) {
        const ssize_t count = copy_file_range(from, nullptr, to, nullptr, std::min(limit, kKernelStep), 0);
        if (count == 0) return 0;
        if (count > 0) {
            limit -= static_cast<std::size_t>(count);
        } else if (errno == ENOSPC || errno == EDQUOT || errno == EIO || errno == EFBIG) {
            return errno;
        } else if (errno != EINTR) {
            std::vector<std::byte> buffer(std::min(limit, kBufferSize));
            return ReadAndWrite(from, to, limit, buffer);
        }
    }
    return 0;
}

int CopyContents(int from, int to, const struct stat& status) {
    if (status.st_size <= kSmallFile) {
        std::byte buffer[kSmallFile];
        // A size of 0 is also what the files of /proc say.
        return ReadAndWrite(from, to, status.st_size == 0 ? kToEnd : static_cast<std::size_t>(status.st_size),
                            buffer);
    }
    if (ioctl(to, FICLONE, from) == 0) return 0;
    constexpr off_t kBlock = 512; // unit of st_blocks
    if (status.st_blocks * kBlock < status.st_size && FindsHoles(from))
        return CopySparse(from, to, status.st_size);
    return CopyRange(from, to, kToEnd);
}

} // namespace win32
