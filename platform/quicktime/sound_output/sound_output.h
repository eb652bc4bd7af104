// The machine's sound output: one device on which all voices are mixed.
#pragma once

#include "platform/quicktime/modules/sdl_module.h"
#include "platform/quicktime/sound_output/voice.h"
#include "platform/quicktime/types.h"

#include <mutex>

namespace qt {

inline constexpr OSErr noHardwareErr = -200;

/// Host thread only; the device's thread mixes. The device is opened for the first voice. It stays open, so
/// that the next one starts at once and what is played in turn reaches it in one stream.
class SoundOutput {
public:
    static SoundOutput& Get();
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;
    ~SoundOutput() { Close(); }

    /// Adds a voice, which starts when its settings say so. noHardwareErr where nothing can be played.
    OSErr Add(const std::shared_ptr<Voice>& voice);
    void Set(Voice& voice, const VoiceSettings& settings);
    /// Ends everything, once what was handed to the device has been heard.
    void Close();

private:
    SoundOutput() = default;
    static void Mix(void* context, float* samples, std::size_t frames);
    OSErr Open();
    std::shared_ptr<const RateFilter> FilterFor(double step);

    const SdlModule* module_ = nullptr;
    void* device_ = nullptr;
    std::uint32_t rate_ = 0;
    std::shared_ptr<const RateFilter> filter_; ///< the latest: most voices play alike

    std::mutex lock_; ///< of the voices and their settings
    std::vector<std::shared_ptr<Voice>> voices_;
};

/// The module of the sound devices; null where it can't be loaded.
const SdlModule* SoundDevices();

} // namespace qt
