// Failures of memory and of the disk on demand, for this program and every library in it.
#pragma once

#include <cstdint>

namespace corvane::test {

/// What can fail. Its calls are counted at all times, in all threads.
enum class Resource { kMemory, kDisk };

/// Calls since the program started: allocations, or writes to a file of any kind and closings of what was
/// written.
std::int64_t CountCalls(Resource resource);

/// While it lives, the allocation or write that comes `after` calls from now (0: the next one) fails, for
/// want of memory or room, and with it the following ones up to `number`.
class Shortage {
public:
    Shortage(Resource resource, std::int64_t after, std::int64_t number);
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;
    ~Shortage();

private:
    Resource resource_;
};

} // namespace corvane::test
