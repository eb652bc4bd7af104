#include "platform/quicktime/effects/bands.h"

#include <algorithm>
#include <future>
#include <thread>
#include <vector>

namespace qt {
namespace {

constexpr std::int64_t kPixelsWorthAThread = 100'000; ///< a thread starts in the time of some 10,000

std::int32_t Threads(const PixelImage& image, std::int32_t count) {
    const std::int64_t pixels = std::int64_t{image.width()} * image.height();
    const std::int64_t processors = std::max(1U, std::thread::hardware_concurrency());
    const std::int64_t threads = std::min({processors, pixels / kPixelsWorthAThread, std::int64_t{count}});
    return static_cast<std::int32_t>(std::max(threads, std::int64_t{1}));
}

} // namespace

void InBands(const PixelImage& image, std::int32_t count,
             const std::function<void(std::int32_t, std::int32_t)>& work) {
    const std::int64_t threads = Threads(image, count);
    const auto edge = [&](std::int64_t band) { return static_cast<std::int32_t>(count * band / threads); };
    std::vector<std::future<void>> others;
    // Deferred as well as async: where no thread can be had, the band is worked on by get().
    for (std::int64_t band = 1; band < threads; ++band)
        others.push_back(
            std::async(std::launch::async | std::launch::deferred, work, edge(band), edge(band + 1)));
    work(0, edge(1));
    for (std::future<void>& other : others) other.get();
}

} // namespace qt
