// What a test asks of files on this machine.
#pragma once

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <thread>

namespace corvane::test {

/// An empty folder that is deleted with this object.
class ScratchFolder {
public:
    ScratchFolder() : path_(std::filesystem::temp_directory_path() / "corvane-test-XXXXXX") {
        if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no scratch folder: " + path_);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }

    [[nodiscard]] const std::string& Path() const { return path_; }

private:
    std::string path_;
};

/// Makes the folders of the path, too.
inline void WriteBytes(const std::string& path, const std::string& bytes) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// True also for a symbolic link that leads nowhere.
inline bool IsThere(const std::string& path) {
    return std::filesystem::exists(std::filesystem::symlink_status(path));
}

/// Of the item itself, also of a symbolic link.
inline struct stat StatusOf(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) throw std::runtime_error("not there: " + path);
    return status;
}

/// "folder/file=contents link->target empty/": all that is in a folder, sorted.
inline std::string Listing(const std::string& folder) {
    std::set<std::string> entries;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_directory() && !entry.is_symlink() && !is_empty(entry.path())) continue;
        std::string text = entry.path().lexically_relative(folder);
        if (entry.is_symlink()) {
            text += "->" + std::filesystem::read_symlink(entry.path()).string();
        } else {
            text += entry.is_regular_file() ? "=" + ReadBytes(entry.path()) : "/";
        }
        entries.insert(text);
    }
    std::string listing;
    for (const std::string& entry : entries) listing.append(listing.empty() ? 0 : 1, ' ').append(entry);
    return listing;
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
