// Samples on their way from the thread of the input device to the thread that writes them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <span>
#include <vector>

namespace qt {

class CapturedSound {
public:
    /// Of the device's thread. While paused nothing is taken.
    void Take(std::span<const std::byte> samples) {
        const std::lock_guard lock(lock_);
        if (paused_) return;
        overrun_ |= samples.size() > kLimit - bytes_.size();
        if (!overrun_) bytes_.insert(bytes_.end(), samples.begin(), samples.end());
    }

    void Pause(bool paused) {
        const std::lock_guard lock(lock_);
        paused_ = paused;
    }

    /// Hands over what came in since the last time, in exchange for a block whose memory is used again. False
    /// once something was lost.
    bool Give(std::vector<std::byte>& block) {
        block.clear();
        const std::lock_guard lock(lock_);
        block.swap(bytes_);
        return !overrun_;
    }

private:
    static constexpr std::size_t kLimit = std::size_t{64} << 20; ///< six minutes of CD quality

    std::mutex lock_;
    std::vector<std::byte> bytes_;
    bool paused_ = false;
    bool overrun_ = false; ///< the writing thread did not come for too long
};

} // namespace qt
