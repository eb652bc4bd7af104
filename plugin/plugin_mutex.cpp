#include "plugin/plugin_mutex.h"

#include "platform/win32/errors.h"
#include "platform/win32/file_handles.h"
#include "plugin/host_data.h"

namespace corvane {
namespace {

constexpr std::uint32_t kTag = FourCC("MUTX");

} // namespace

DWORD MutexCreate(PluginMutex& lock) {
    lock = {kTag, CreateMutexA(nullptr, FALSE, nullptr)};
    return lock.mutex != nullptr ? ERROR_SUCCESS : ::GetLastError();
}

DWORD MutexLock(const PluginMutex& lock) {
    return WaitForSingleObject(lock.mutex, INFINITE) == WAIT_OBJECT_0 ? ERROR_SUCCESS : ::GetLastError();
}

DWORD MutexUnlock(const PluginMutex& lock) {
    return ReleaseMutex(lock.mutex) != FALSE ? ERROR_SUCCESS : ::GetLastError();
}

DWORD MutexDestroy(PluginMutex& lock) {
    const PluginMutex destroyed = lock;
    lock = {};
    return CloseHandle(destroyed.mutex) != FALSE ? ERROR_SUCCESS : ::GetLastError();
}

} // namespace corvane
