#include "platform/quicktime/modules/silent_device.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

SilentDevice::SilentDevice(std::uint32_t rate, std::uint32_t frames, std::size_t frame_bytes,
                           std::function<void(std::span<std::byte>)> work)
    : rate_(rate),
      frames_(frames),
      block_(frames * frame_bytes),
      work_(std::move(work)),
      thread_([this](const std::stop_token& stop) { Run(stop); }) {}

// Each block has its time from the start on, so that delays don't add up.
void SilentDevice::Run(const std::stop_token& stop) {
    using Clock = std::chrono::steady_clock;
    std::mutex mutex;
    std::condition_variable_any stopped;
    std::unique_lock lock(mutex);
    const auto start = Clock::now();
    for (std::int64_t frame = 0; !stop.stop_requested(); frame += frames_) {
        const std::chrono::nanoseconds time(frame * 1'000'000'000 / rate_);
        stopped.wait_until(lock, stop, start + time, [] { return false; });
        if (stop.stop_requested()) return;
        std::ranges::fill(block_, std::byte{});
        work_(block_);
    }
}
