// Interface of the module that reaches the machine's sound devices. It stands apart because its library takes
// milliseconds to load.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

/// Runs on a thread of the device until it is closed. Neither may throw or wait for long.
using SoundOutputCallback = void (*)(void* context, float* samples, std::size_t frames);
using SoundInputCallback = void (*)(void* context, const void* samples, std::size_t bytes);

/// Interleaved samples. Output is in floats, input in signed 16-bit samples of this machine's byte order.
struct SoundDeviceFormat {
    std::uint32_t rate;
    std::uint32_t channels;
    std::uint32_t frames; ///< of one call of the callback
};

/// Which driver and device is the environment's choice; see docs/sound.md. Not for use on several threads.
struct SdlModule {
    /// Starts playing; null without hardware. The device may choose another rate, which `format` gets.
    void* (*open_output)(SoundDeviceFormat* format, SoundOutputCallback callback, void* context);
    /// Starts recording, in exactly this format.
    void* (*open_input)(const SoundDeviceFormat* format, SoundInputCallback callback, void* context);
    /// False once the device has been taken away: its time goes on, but nothing is heard or comes in.
    bool (*is_there)(const void* device);
    /// Ends it, after what has been handed over for playing has been heard. The callback won't run again.
    void (*close)(void* device);
};
}
