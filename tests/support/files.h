// What a test asks of files on this machine.
#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <thread>

namespace corvane::test {

inline std::string ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

/// True also for a symbolic link that leads nowhere.
inline bool IsThere(const std::string& path) {
    return std::filesystem::exists(std::filesystem::symlink_status(path));
}

inline std::ptrdiff_t CountEntries(const std::string& folder) {
    const std::filesystem::directory_iterator entries(folder);
    return std::distance(begin(entries), end(entries));
}

inline std::ptrdiff_t CountOpenDescriptors() {
    return CountEntries("/proc/self/fd");
}

/// Threads of this process, once there are no more than `most`, or after five seconds: the kernel lists a
/// joined thread for a moment longer.
inline std::ptrdiff_t CountThreads(std::ptrdiff_t most = std::numeric_limits<std::ptrdiff_t>::max()) {
    constexpr std::chrono::milliseconds kPause(1);
    std::ptrdiff_t count = CountEntries("/proc/self/task");
    for (int tries = 0; count > most && tries < 5000; ++tries) {
        std::this_thread::sleep_for(kPause);
        count = CountEntries("/proc/self/task");
    }
    return count;
}

} // namespace corvane::test
