#include "platform/quicktime/transform_bands.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace qt {
namespace {

constexpr std::int64_t kWorthAThread = 100'000; ///< pixels: about a millisecond
constexpr unsigned kMostThreads = 8;
constexpr std::int32_t kBandsPerThread = 8; ///< so that bands of little work don't leave threads idle

/// Bands that threads take one by one.
class Bands {
public:
    Bands(std::int32_t rows, std::int32_t count, const std::function<void(std::int32_t, std::int32_t)>& draw)
        : rows_(rows), height_((rows + count - 1) / count), draw_(draw) {}

    void Draw() noexcept {
        try {
            for (;;) {
                const std::int32_t first = next_.fetch_add(height_);
                if (first >= rows_) return;
                draw_(first, std::min(first + height_, rows_));
            }
        } catch (...) {
            const std::scoped_lock lock(mutex_);
            failure_ = std::current_exception();
            next_ = rows_;
        }
    }

    void Rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    const std::int32_t rows_;
    const std::int32_t height_;
    const std::function<void(std::int32_t, std::int32_t)>& draw_;
    std::atomic<std::int32_t> next_ = 0;
    std::mutex mutex_;
    std::exception_ptr failure_;
};

} // namespace

void DrawInBands(std::int32_t rows, std::int64_t pixels,
                 const std::function<void(std::int32_t first, std::int32_t end)>& draw) {
    const auto processors =
        static_cast<std::int64_t>(std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads));
    const auto threads =
        static_cast<std::int32_t>(std::clamp(pixels / kWorthAThread, std::int64_t{1}, processors));
    Bands bands(rows, threads == 1 ? 1 : threads * kBandsPerThread, draw);
    std::vector<std::thread> others;
    others.reserve(static_cast<std::size_t>(threads));
    try {
        while (static_cast<std::int32_t>(others.size()) + 1 < threads) {
            others.emplace_back([&bands] { bands.Draw(); });
        }
    } catch (...) {
        // No thread is to be had: those that there are do the work.
    }
    bands.Draw();
    for (std::thread& other : others) other.join();
    bands.Rethrow();
}

} // namespace qt
