#include "platform/win32/mutexes.h"

#include "platform/win32/errors.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace {

struct Mutex {
    std::mutex guard;
    std::condition_variable released;
    std::thread::id owner;
    int holds = 0;

    [[nodiscard]] bool IsMine() const { return holds > 0 && owner == std::this_thread::get_id(); }
};

struct Handles {
    std::mutex guard;
    std::map<std::intptr_t, std::shared_ptr<Mutex>> mutexes;
    std::intptr_t next = std::intptr_t{1} << 32; // far from the handles of files
};

Handles& AllHandles() {
    static Handles handles;
    return handles;
}

// Null, with the last error, when the handle is no mutex's.
std::shared_ptr<Mutex> MutexOf(HANDLE handle) {
    Handles& handles = AllHandles();
    const std::lock_guard lock(handles.guard);
    const auto found = handles.mutexes.find(reinterpret_cast<std::intptr_t>(handle));
    if (found != handles.mutexes.end()) return found->second;
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

} // namespace

HANDLE CreateMutexA(const void* attributes, BOOL initial_owner, const char* name) {
    if (attributes != nullptr || name != nullptr) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return nullptr;
    }
    auto mutex = std::make_shared<Mutex>();
    if (initial_owner != FALSE) {
        mutex->owner = std::this_thread::get_id();
        mutex->holds = 1;
    }
    Handles& handles = AllHandles();
    const std::lock_guard lock(handles.guard);
    handles.mutexes.emplace(handles.next, std::move(mutex));
    return reinterpret_cast<HANDLE>(handles.next++);
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    const std::shared_ptr<Mutex> mutex = MutexOf(handle);
    if (mutex == nullptr) return WAIT_FAILED;
    std::unique_lock lock(mutex->guard);
    const auto is_free = [&] { return mutex->holds == 0; };
    if (!mutex->IsMine()) {
        if (milliseconds == INFINITE) {
            mutex->released.wait(lock, is_free);
        } else if (!mutex->released.wait_for(lock, std::chrono::milliseconds(milliseconds), is_free)) {
            return WAIT_TIMEOUT;
        }
        mutex->owner = std::this_thread::get_id();
    }
    ++mutex->holds;
    return WAIT_OBJECT_0;
}

BOOL ReleaseMutex(HANDLE handle) {
    const std::shared_ptr<Mutex> mutex = MutexOf(handle);
    if (mutex == nullptr) return FALSE;
    const std::lock_guard lock(mutex->guard);
    if (!mutex->IsMine()) {
        SetLastError(ERROR_NOT_OWNER);
        return FALSE;
    }
    if (--mutex->holds == 0) mutex->released.notify_one();
    return TRUE;
}

bool win32::CloseMutex(HANDLE handle) {
    Handles& handles = AllHandles();
    const std::lock_guard lock(handles.guard);
    return handles.mutexes.erase(reinterpret_cast<std::intptr_t>(handle)) > 0;
}
