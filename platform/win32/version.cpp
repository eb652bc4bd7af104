#include "platform/win32/version.h"

#include "platform/fmwrapper/session.h"
#include "platform/win32/errors.h"
#include "platform/win32/folders.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr DWORD kPathCapacity = 4096;
constexpr char kFileVersion[] = R"(\StringFileInfo\000004B0\FileVersion)";

// The resource is the version's text with its terminator; empty when the file has none.
std::string_view VersionResource(std::string_view file) {
    std::array<char, kPathCapacity> application{};
    GetModuleFileNameA(nullptr, application.data(), kPathCapacity);
    const std::string& version = fm::CurrentSession().application_version;
    if (version.empty() || file != application.data()) return {};
    return {version.c_str(), version.size() + 1};
}

} // namespace

BOOL GetVersionExA(OSVERSIONINFOA* information) {
    if (information->dwOSVersionInfoSize != sizeof(OSVERSIONINFOA)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    *information = {sizeof(OSVERSIONINFOA), 10, 0, 0, 2, {}};
    return TRUE;
}

DWORD GetFileVersionInfoSizeA(const char* file, DWORD* handle) {
    if (handle != nullptr) *handle = 0;
    const std::string_view resource = VersionResource(file);
    if (resource.empty()) SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
    return static_cast<DWORD>(resource.size());
}

BOOL GetFileVersionInfoA(const char* file, DWORD, DWORD size, void* data) {
    const std::string_view resource = VersionResource(file);
    if (resource.empty() || size == 0) {
        SetLastError(resource.empty() ? ERROR_RESOURCE_DATA_NOT_FOUND : ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    const std::size_t copied = std::min<std::size_t>(size, resource.size());
    std::memcpy(data, resource.data(), copied);
    static_cast<char*>(data)[copied - 1] = '\0';
    return TRUE;
}

BOOL VerQueryValueA(const void* block, const char* name, void** value, UINT* length) {
    if (std::string_view(name) != kFileVersion) {
        SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
        return FALSE;
    }
    *value = const_cast<void*>(block);
    *length = static_cast<UINT>(std::strlen(static_cast<const char*>(block)) + 1);
    return TRUE;
}
