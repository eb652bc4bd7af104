// What a test asks of files on this machine.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

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

} // namespace corvane::test
