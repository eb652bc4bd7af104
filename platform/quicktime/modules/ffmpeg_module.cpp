#include "platform/quicktime/modules/ffmpeg_module_parts.h"

extern "C" {
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

#include <limits>

namespace qt {
namespace {

constexpr int kPrecision = 24; ///< bits: errors stay below those of 16-bit and of most 24-bit sounds

struct SwrDeleter {
    void operator()(SwrContext* context) const { swr_free(&context); }
};

class SwrResampler final : public Resampler {
public:
    SwrResampler(std::unique_ptr<SwrContext, SwrDeleter> context, std::uint32_t channels, std::uint32_t from,
                 std::uint32_t to)
        : context_(std::move(context)), channels_(channels), from_(from), to_(to) {}

    bool Process(std::span<const float> frames, std::vector<float>& out) override {
        const auto count = static_cast<std::int64_t>(frames.size() / channels_);
        if (count > std::numeric_limits<int>::max()) return false;
        taken_ += count;
        const std::int64_t due = (taken_ * to_ + from_ / 2) / from_;
        const std::int64_t room =
            count > 0 ? swr_get_out_samples(context_.get(), static_cast<int>(count)) : due - given_;
        if (room < 0 || room > std::numeric_limits<int>::max()) return false;
        const std::size_t before = out.size();
        out.resize(before + static_cast<std::size_t>(room) * channels_);
        auto* target = reinterpret_cast<std::uint8_t*>(out.data() + before);
        const auto* source = reinterpret_cast<const std::uint8_t*>(frames.data());
        const int got = swr_convert(context_.get(), &target, static_cast<int>(room),
                                    count > 0 ? &source : nullptr, static_cast<int>(count));
        out.resize(before + static_cast<std::size_t>(std::max(got, 0)) * channels_);
        given_ += std::max(got, 0);
        return got >= 0;
    }

private:
    std::unique_ptr<SwrContext, SwrDeleter> context_;
    std::uint32_t channels_;
    std::int64_t from_;
    std::int64_t to_;
    std::int64_t taken_ = 0;
    std::int64_t given_ = 0;
};

} // namespace

std::unique_ptr<Resampler> OpenResampler(std::uint32_t channels, std::uint32_t from, std::uint32_t to) {
    constexpr std::uint32_t kHighest = 10'000'000;
    if (channels == 0 || channels > 64 || from == 0 || to == 0 || from > kHighest || to > kHighest)
        return nullptr;
    AVChannelLayout layout = {};
    av_channel_layout_default(&layout, static_cast<int>(channels));
    SwrContext* made = nullptr;
    const int code = swr_alloc_set_opts2(&made, &layout, AV_SAMPLE_FMT_FLT, static_cast<int>(to), &layout,
                                         AV_SAMPLE_FMT_FLT, static_cast<int>(from), 0, nullptr);
    std::unique_ptr<SwrContext, SwrDeleter> context(made);
    if (code < 0) return nullptr;
    av_opt_set_int(made, "resampler", SWR_ENGINE_SOXR, 0);
    av_opt_set_double(made, "precision", kPrecision, 0);
    if (swr_init(made) < 0) { // built without soxr: its own engine, with a long filter
        av_opt_set_int(made, "resampler", SWR_ENGINE_SWR, 0);
        av_opt_set_int(made, "filter_size", 64, 0);
        av_opt_set_int(made, "phase_shift", 12, 0);
        av_opt_set_double(made, "cutoff", 0.97, 0);
        if (swr_init(made) < 0) return nullptr;
    }
    return std::make_unique<SwrResampler>(std::move(context), channels, from, to);
}

namespace {

/// Bytes that the library may want at once. A day of AAC in fragments has an index of 100 MB; a file of 1 KB
/// that claims millions of entries shall not have gigabytes cleared for it.
constexpr std::size_t kLargestBlock = std::size_t{128} << 20;

} // namespace
} // namespace qt

extern "C" __attribute__((visibility("default"))) const void* corvane_module() {
    static const qt::FfmpegModule module = {qt::OpenDecoder, qt::OpenFile, qt::OpenResampler,
                                            qt::OpenEncoder};
    av_log_set_level(AV_LOG_QUIET);
    av_max_alloc(qt::kLargestBlock);
    return &module;
}
