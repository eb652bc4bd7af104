#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace calc {

// An empty folder to work in, deleted at the end. The process's own places (current, temporary and home
// folder) are inside it, so that a test touches nothing else and finds nothing of another.
class ScratchFolder {
public:
    ScratchFolder() : before_(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "calc-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no scratch folder");
        path_ = name;
        std::filesystem::create_directories(path_ / "Temp");
        std::filesystem::create_directories(path_ / "Home" / "Desktop");
        std::filesystem::current_path(path_);
        if (const char* temporary = std::getenv("TMPDIR")) temporary_ = temporary;
        setenv("TMPDIR", (path_ / "Temp").c_str(), 1);
        setenv("HOME", (path_ / "Home").c_str(), 1);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() {
        std::filesystem::current_path(before_);
        if (temporary_.empty()) {
            unsetenv("TMPDIR");
        } else {
            setenv("TMPDIR", temporary_.c_str(), 1);
        }
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }

    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

private:
    std::filesystem::path before_;
    std::filesystem::path path_;
    std::string temporary_;
};

} // namespace calc
