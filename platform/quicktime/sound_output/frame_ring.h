// Frames on their way from the thread that decodes to the thread of the sound device.
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <span>
#include <vector>

namespace qt {

struct StereoFrame {
    float left = 0;
    float right = 0;
};

/// A queue of bounded length for one thread that pushes and one that pops; neither ever waits.
class FrameRing {
public:
    explicit FrameRing(std::size_t least_capacity) : frames_(std::bit_ceil(least_capacity)) {}

    [[nodiscard]] std::size_t Room() const {
        return frames_.size() -
               (pushed_.load(std::memory_order_relaxed) - popped_.load(std::memory_order_acquire));
    }
    /// At most Room() frames.
    void Push(std::span<const StereoFrame> frames) {
        const std::size_t pushed = pushed_.load(std::memory_order_relaxed);
        const std::size_t start = pushed & (frames_.size() - 1);
        const auto first = frames.first(std::min(frames.size(), frames_.size() - start));
        std::ranges::copy(first, frames_.begin() + static_cast<std::ptrdiff_t>(start));
        std::ranges::copy(frames.subspan(first.size()), frames_.begin());
        pushed_.store(pushed + frames.size(), std::memory_order_release);
    }

    [[nodiscard]] std::size_t Available() const {
        return pushed_.load(std::memory_order_acquire) - popped_.load(std::memory_order_relaxed);
    }
    /// Only when one is available.
    StereoFrame Pop() {
        const std::size_t popped = popped_.load(std::memory_order_relaxed);
        const StereoFrame frame = frames_[popped & (frames_.size() - 1)];
        popped_.store(popped + 1, std::memory_order_release);
        return frame;
    }

private:
    std::vector<StereoFrame> frames_;
    std::atomic<std::size_t> pushed_ = 0;
    std::atomic<std::size_t> popped_ = 0;
};

} // namespace qt
