#include "platform/win32/temporary_names.h"

#include "platform/text/utf.h"
#include "platform/win32/errors.h"
#include "platform/win32/paths.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <fcntl.h>
#include <random>
#include <string>
#include <unistd.h>

namespace {

constexpr int kAttempts = 1000;

// Counts up from a random start, so that neither this process nor, in practice, another gives a name again.
std::uint64_t NextNumber() {
    static std::atomic<std::uint64_t> number = [] {
        std::random_device random;
        return (std::uint64_t{random()} << 16) ^ random();
    }();
    return ++number & 0xFFFFFFFFFFFF;
}

std::u16string HexadecimalDigits(std::uint64_t number) {
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    return utf::ToUpper(utf::ToUtf16({digits.data(), static_cast<std::size_t>(end - digits.data())}));
}

} // namespace

UINT GetTempFileNameW(const WCHAR* folder, const WCHAR* prefix, UINT unique, WCHAR* path) {
    if (unique != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::u16string base(folder);
    if (base.empty() || base.back() != u'\\') base.push_back(u'\\');
    base += std::u16string_view(prefix).substr(0, 3);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const std::u16string name = base + HexadecimalDigits(NextNumber()) + u".tmp";
        if (name.size() >= MAX_PATH) {
            SetLastError(ERROR_FILENAME_EXCED_RANGE);
            return 0;
        }
        const win32::UnixPath target = win32::ToUnixPath(name);
        if (target.exists) continue;
        if (target.error != ERROR_FILE_NOT_FOUND) {
            SetLastError(target.error);
            return 0;
        }
        const int file = open(target.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (file >= 0) {
            close(file);
            *std::copy(name.begin(), name.end(), path) = u'\0';
            return 1;
        }
        if (errno != EEXIST) {
            SetLastError(win32::FromErrno(errno));
            return 0;
        }
    }
    SetLastError(ERROR_FILE_EXISTS);
    return 0;
}

std::string win32::UnfinishedName() {
    return ".corvane-" + utf::ToUtf8(HexadecimalDigits(NextNumber()));
}
