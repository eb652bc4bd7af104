// The lock that the timer list, the media pool and the recorders have, each one of its own.
#pragma once

#include "platform/win32/mutexes.h"

#include <cstdint>

namespace corvane {

struct PluginMutex {
    std::uint32_t tag = 0;
    HANDLE mutex = nullptr;
};

/// Each answers 0 or the system's error. A thread that has the lock may take it again.
DWORD MutexCreate(PluginMutex& lock);
DWORD MutexLock(const PluginMutex& lock); ///< waits as long as it takes
DWORD MutexUnlock(const PluginMutex& lock);
DWORD MutexDestroy(PluginMutex& lock);

/// Has the lock while it lives.
class MutexScope {
public:
    explicit MutexScope(const PluginMutex& lock) : lock_(lock) { MutexLock(lock_); }
    MutexScope(const MutexScope&) = delete;
    MutexScope& operator=(const MutexScope&) = delete;
    ~MutexScope() { MutexUnlock(lock_); }

private:
    const PluginMutex& lock_;
};

} // namespace corvane
