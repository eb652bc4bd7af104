// A file system of its own and of limited size, at a folder of the test.
#pragma once

#include <string>
#include <sys/mount.h>

namespace corvane::test {

class SmallDisk {
public:
    SmallDisk(std::string folder, const std::string& size) : folder_(std::move(folder)) {
        mounted_ = mount("none", folder_.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk() {
        if (mounted_) umount2(folder_.c_str(), MNT_DETACH);
    }

    /// False where mounting is not permitted: the test has to be skipped.
    [[nodiscard]] bool IsMounted() const { return mounted_; }
    /// From now on nothing can be changed on it.
    [[nodiscard]] bool MakeReadOnly() const {
        return mount("none", folder_.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

private:
    std::string folder_;
    bool mounted_ = false;
};

} // namespace corvane::test
