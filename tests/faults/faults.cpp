// The names that a program defines itself come before those of the C library, for all libraries that it
// loads.
#include "tests/faults/faults.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <limits>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

namespace corvane::test {
namespace {

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

struct Counter {
    std::atomic<std::int64_t> calls = 0;
    std::atomic<std::int64_t> first = kNever; ///< of the calls that fail
    std::atomic<std::int64_t> end = kNever;
};

constinit std::array<Counter, 2> g_counters;

Counter& CounterOf(Resource resource) {
    return g_counters[static_cast<std::size_t>(resource)];
}

bool Fails(Resource resource) {
    Counter& counter = CounterOf(resource);
    const std::int64_t call = counter.calls.fetch_add(1, std::memory_order_relaxed);
    return call >= counter.first && call < counter.end;
}

// Numbers of the files that were written since they were closed last, in any order.
constinit std::array<std::atomic<ino_t>, 64> g_written;

} // namespace

std::int64_t CountCalls(Resource resource) {
    return CounterOf(resource).calls;
}

Shortage::Shortage(Resource resource, std::int64_t after, std::int64_t number) : resource_(resource) {
    for (auto& written : g_written) written = 0; // the C library closes without telling
    Counter& counter = CounterOf(resource);
    const std::int64_t first = counter.calls + after;
    counter.end = number > kNever - first ? kNever : first + number;
    counter.first = first;
}

Shortage::~Shortage() {
    CounterOf(resource_).first = kNever;
}

namespace {

// These libraries, as Debian 12 has them, follow null pointers when they get no memory.
constexpr std::array<std::string_view, 6> kFaultyLibraries = {"libavcodec", "libavutil",  "libmp3lame",
                                                              "libopenjp2", "libsndfile", "libtiff"};

bool IsFaulty(const void* caller) {
    Dl_info info;
    if (dladdr(caller, &info) == 0 || info.dli_fname == nullptr) return false;
    const std::string_view library(info.dli_fname);
    return std::ranges::any_of(kFaultyLibraries, [&](std::string_view name) {
        return library.find(name) != std::string_view::npos;
    });
}

bool NoMemory(const void* caller) {
    if (!Fails(Resource::kMemory) || IsFaulty(caller)) return false;
    errno = ENOMEM;
    return true;
}

// The number of a regular file; 0 of anything else.
ino_t NumberOf(int file) {
    struct stat status {};
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode) ? status.st_ino : 0;
}

void MarkWritten(ino_t number) {
    if (std::ranges::any_of(g_written, [number](const auto& written) { return written == number; })) return;
    for (auto& written : g_written)
        if (ino_t none = 0; written.compare_exchange_strong(none, number)) return;
}

bool TakeMark(ino_t number) {
    return std::ranges::any_of(g_written, [number](auto& written) {
        ino_t marked = number;
        return written.compare_exchange_strong(marked, 0);
    });
}

// What a system call answers, or that there is no room for what it writes; standard output always has some.
template <class... Arguments>
ssize_t Write(int file, long call, Arguments... arguments) {
    if (file <= STDERR_FILENO) return syscall(call, arguments...);
    if (const ino_t number = NumberOf(file); number != 0) MarkWritten(number);
    if (!Fails(Resource::kDisk)) return syscall(call, arguments...);
    errno = ENOSPC;
    return -1;
}

// Closes the file, which may tell only now that there was no room, as some file systems do.
int Close(int file) {
    const ino_t number = NumberOf(file);
    const bool fails = number != 0 && TakeMark(number) && Fails(Resource::kDisk);
    if (syscall(SYS_close, file) != 0) return -1;
    if (fails) errno = ENOSPC;
    return fails ? -1 : 0;
}

} // namespace
} // namespace corvane::test

using corvane::test::NoMemory;

// Parameters are called as in the C library's headers.
extern "C" {

#ifndef __SANITIZE_ADDRESS__

// NOLINTBEGIN(bugprone-reserved-identifier): the C library's own names for what is replaced here
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier)

void* malloc(std::size_t size) noexcept {
    return NoMemory(__builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t nmemb, std::size_t size) noexcept {
    return NoMemory(__builtin_return_address(0)) ? nullptr : __libc_calloc(nmemb, size);
}

void* realloc(void* ptr, std::size_t size) noexcept {
    return NoMemory(__builtin_return_address(0)) ? nullptr : __libc_realloc(ptr, size);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return NoMemory(__builtin_return_address(0)) ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return NoMemory(__builtin_return_address(0)) ? nullptr : __libc_memalign(alignment, size);
}

int posix_memalign(void** memptr, std::size_t alignment, std::size_t size) noexcept {
    *memptr = NoMemory(__builtin_return_address(0)) ? nullptr : __libc_memalign(alignment, size);
    return *memptr == nullptr ? ENOMEM : 0;
}

#endif

int close(int fd) {
    return corvane::test::Close(fd);
}

ssize_t write(int fd, const void* buf, std::size_t n) {
    return corvane::test::Write(fd, SYS_write, fd, buf, n);
}

ssize_t writev(int fd, const iovec* iovec, int count) {
    return corvane::test::Write(fd, SYS_writev, fd, iovec, count);
}

ssize_t pwrite(int fd, const void* buf, std::size_t n, off_t offset) {
    return corvane::test::Write(fd, SYS_pwrite64, fd, buf, n, offset);
}

ssize_t pwrite64(int fd, const void* buf, std::size_t n, off64_t offset) {
    return corvane::test::Write(fd, SYS_pwrite64, fd, buf, n, offset);
}

ssize_t copy_file_range(int infd, off64_t* pinoff, int outfd, off64_t* poutoff, std::size_t length,
                        unsigned flags) {
    return corvane::test::Write(outfd, SYS_copy_file_range, infd, pinoff, outfd, poutoff, length, flags);
}

ssize_t sendfile(int out_fd, int in_fd, off_t* offset, std::size_t count) noexcept {
    return corvane::test::Write(out_fd, SYS_sendfile, out_fd, in_fd, offset, count);
}

} // extern "C"

#ifdef __SANITIZE_ADDRESS__

// The sanitizer needs the C library's functions for itself: with it only what C++ allocates fails.
void* operator new(std::size_t size) {
    void* block = NoMemory(__builtin_return_address(0)) ? nullptr : malloc(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return NoMemory(__builtin_return_address(0)) ? nullptr : malloc(size);
}

void operator delete(void* block) noexcept {
    free(block);
}

void operator delete[](void* block) noexcept {
    free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    free(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    free(block);
}

// Libraries that bring the two together on their own are none of this test's business.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer looks for this name
extern "C" const char* __asan_default_options() {
    return "alloc_dealloc_mismatch=0:allocator_may_return_null=1";
}

#endif
