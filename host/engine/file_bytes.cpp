#include "host/engine/file_bytes.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace host {
namespace {

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int Number() const { return number_; }

private:
    int number_;
};

} // namespace

std::shared_ptr<const fm::Bytes> FileBytes(const std::string& path, std::string& problem) {
    const auto fail = [&](const char* reason) {
        problem = "cannot read " + path + ": " + reason;
        return nullptr;
    };
    // Without O_NONBLOCK a named pipe would be waited for.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (file.Number() < 0 || ::fstat(file.Number(), &status) != 0) return fail(std::strerror(errno));
    if (!S_ISREG(status.st_mode)) return fail("not a file");
    if (status.st_size > std::numeric_limits<std::uint32_t>::max()) return fail("larger than 4 GiB");
    auto bytes = std::make_shared<fm::Bytes>(static_cast<std::size_t>(status.st_size));
    std::size_t filled = 0;
    while (filled < bytes->size()) {
        const ssize_t count = ::read(file.Number(), bytes->data() + filled, bytes->size() - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return fail(std::strerror(errno));
        if (count == 0) break; // the file has shrunk
        filled += static_cast<std::size_t>(count);
    }
    bytes->resize(filled);
    return bytes;
}

} // namespace host
