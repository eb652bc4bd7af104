// A sound device for machines without one: nothing is heard or comes in, but time passes as it does on
// others.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <thread>
#include <vector>

/// Calls back on a thread of its own for one block after the other, from the start on, each at its time.
class SilentDevice {
public:
    /// `work` gets a block of zeros. Throws std::system_error without a thread.
    SilentDevice(std::uint32_t rate, std::uint32_t frames, std::size_t frame_bytes,
                 std::function<void(std::span<std::byte>)> work);

private:
    void Run(const std::stop_token& stop);

    std::uint32_t rate_;
    std::uint32_t frames_;
    std::vector<std::byte> block_;
    std::function<void(std::span<std::byte>)> work_;
    std::jthread thread_;
};
