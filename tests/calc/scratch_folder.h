#pragma once

#include "tests/support/environment_variable.h"
#include "tests/support/files.h"

#include <filesystem>

namespace calc {

// An empty folder to work in, deleted at the end. The process's own places (current, temporary and home
// folder) are inside it, so that a test touches nothing else and finds nothing of another.
class ScratchFolder {
public:
    ScratchFolder() {
        for (const char* folder : {"Temp", "Home/Desktop"})
            std::filesystem::create_directories(Path() / folder);
        std::filesystem::current_path(Path());
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() { std::filesystem::current_path(before_); }

    [[nodiscard]] std::filesystem::path Path() const { return folder_.Path(); }

private:
    std::filesystem::path before_ = std::filesystem::current_path();
    corvane::test::ScratchFolder folder_;
    corvane::test::EnvironmentVariable temporary_{"TMPDIR", Path() / "Temp"};
    corvane::test::EnvironmentVariable home_{"HOME", Path() / "Home"};
};

} // namespace calc
