#include "platform/quicktime/sound_output/sound_output.h"

#include "platform/modules/modules.h"

namespace qt {
namespace {

constexpr std::uint32_t kWantedRate = 44'100;
constexpr std::uint32_t kChannels = 2;
/// 20 ms: drivers that write files wait for whole milliseconds, and would run fast with other lengths.
constexpr std::uint32_t kBlock = 882;
constexpr double kLargestStep = 16;

} // namespace

SoundOutput& SoundOutput::Get() {
    static SoundOutput output;
    return output;
}

OSErr SoundOutput::Add(const std::shared_ptr<Voice>& voice) {
    if (const OSErr code = Open(); code != noErr) return code;
    const std::lock_guard lock(lock_);
    std::erase_if(voices_, [](const auto& old) { return old->IsFinished(); });
    voices_.push_back(voice);
    return noErr;
}

void SoundOutput::Set(Voice& voice, const VoiceSettings& settings) {
    std::shared_ptr<const RateFilter> filter = FilterFor(std::min(settings.rate / rate_, kLargestStep));
    const std::lock_guard lock(lock_);
    voice.Set(settings, std::move(filter));
}

OSErr SoundOutput::Open() {
    if (device_ != nullptr && module_->is_there(device_)) return noErr;
    if (device_ != nullptr) module_->close(device_);
    device_ = nullptr;
    module_ = SoundDevices();
    if (module_ == nullptr) return noHardwareErr;
    SoundDeviceFormat format = {kWantedRate, kChannels, kBlock};
    device_ = module_->open_output(&format, Mix, this);
    if (device_ == nullptr) return noHardwareErr;
    rate_ = format.rate;
    for (const auto& voice : voices_) Set(*voice, voice->Settings()); // go on here, at this one's rate
    return noErr;
}

void SoundOutput::Close() {
    if (device_ != nullptr) module_->close(device_);
    device_ = nullptr;
    voices_.clear();
}

std::shared_ptr<const RateFilter> SoundOutput::FilterFor(double step) {
    if (filter_ == nullptr || filter_->Step() != step) filter_ = std::make_shared<RateFilter>(step);
    return filter_;
}

void SoundOutput::Mix(void* context, float* samples, std::size_t frames) {
    auto& output = *static_cast<SoundOutput*>(context);
    static_assert(sizeof(StereoFrame) == kChannels * sizeof(float));
    const std::span<StereoFrame> mix(static_cast<StereoFrame*>(static_cast<void*>(samples)), frames);
    std::ranges::fill(mix, StereoFrame{});
    {
        const std::lock_guard lock(output.lock_);
        for (const auto& voice : output.voices_)
            if (!voice->IsFinished()) voice->Mix(mix);
    }
    for (float& sample : std::span(samples, frames * kChannels)) sample = std::clamp(sample, -1.0F, 1.0F);
}

const SdlModule* SoundDevices() {
    return modules::Table<SdlModule>("sdl");
}

} // namespace qt
