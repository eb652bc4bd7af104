#include "platform/quicktime/modules/sdl_module.h"

#include "platform/quicktime/modules/pulse_server.h"
#include "platform/quicktime/modules/silent_device.h"

#include <SDL.h>

#include <memory>
#include <string_view>
#include <system_error>

namespace {

struct Device {
    SDL_AudioDeviceID id = 0;
    std::unique_ptr<SilentDevice> silent; ///< in its place
    SoundOutputCallback play = nullptr;
    SoundInputCallback record = nullptr;
    void* context = nullptr;
    std::size_t frame_bytes = 0;

    void Work(std::span<std::byte> block) const {
        if (play != nullptr)
            play(context, static_cast<float*>(static_cast<void*>(block.data())), block.size() / frame_bytes);
        else
            record(context, block.data(), block.size());
    }
};

int g_devices = 0; // of the driver, which runs while there are any

// Devices are counted first, for opening one that is not there makes some drivers' libraries complain on
// standard error, as this library does in its log.
bool StartDriver(bool input, bool is_chosen) {
    constexpr auto kNone = std::string_view::npos;
    const bool may_be_pulse =
        !is_chosen || std::string_view(SDL_getenv("SDL_AUDIODRIVER")).find("pulse") != kNone;
    if (may_be_pulse && PulseServerIsUnusable()) return false;
    SDL_LogSetOutputFunction([](void*, int, SDL_LogPriority, const char*) {}, nullptr);
    if (SDL_AudioInit(nullptr) != 0) return false;
    return is_chosen || SDL_GetNumAudioDevices(input ? 1 : 0) != 0;
}

bool OpenOnDriver(Device& device, SoundDeviceFormat& format, bool is_chosen) {
    const bool input = device.record != nullptr;
    if (g_devices++ == 0 && !StartDriver(input, is_chosen)) return false;
    SDL_AudioSpec wanted{};
    wanted.freq = static_cast<int>(format.rate);
    wanted.format = input ? AUDIO_S16SYS : AUDIO_F32SYS;
    wanted.channels = static_cast<Uint8>(format.channels);
    wanted.samples = static_cast<Uint16>(format.frames);
    wanted.userdata = &device;
    wanted.callback = [](void* opened, Uint8* stream, int bytes) {
        const std::span block(static_cast<std::byte*>(static_cast<void*>(stream)),
                              static_cast<std::size_t>(bytes));
        static_cast<Device*>(opened)->Work(block);
    };
    SDL_AudioSpec got{};
    const int changes = input ? 0 : SDL_AUDIO_ALLOW_FREQUENCY_CHANGE;
    device.id = SDL_OpenAudioDevice(nullptr, input ? 1 : 0, &wanted, &got, changes);
    if (device.id == 0) return false;
    format.rate = static_cast<std::uint32_t>(got.freq);
    SDL_PauseAudioDevice(device.id, 0);
    return true;
}

void LeaveDriver() {
    if (--g_devices == 0) SDL_AudioQuit();
}

bool OpenSilently(Device& device, const SoundDeviceFormat& format) {
    try {
        device.silent =
            std::make_unique<SilentDevice>(format.rate, format.frames, device.frame_bytes,
                                           [&device](std::span<std::byte> block) { device.Work(block); });
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

// Without a choice a machine that has no device gets one that only keeps time.
Device* Open(std::unique_ptr<Device> device, SoundDeviceFormat& format) {
    const char* driver = SDL_getenv("SDL_AUDIODRIVER");
    const bool is_chosen = driver != nullptr && *driver != '\0';
    const bool is_silent = is_chosen && std::string_view(driver) == "dummy";
    if (!is_silent) {
        if (OpenOnDriver(*device, format, is_chosen)) return device.release();
        LeaveDriver();
        if (is_chosen) return nullptr;
    }
    return OpenSilently(*device, format) ? device.release() : nullptr;
}

void* OpenOutput(SoundDeviceFormat* format, SoundOutputCallback callback, void* context) {
    auto device = std::make_unique<Device>();
    device->play = callback;
    device->context = context;
    device->frame_bytes = format->channels * sizeof(float);
    return Open(std::move(device), *format);
}

void* OpenInput(const SoundDeviceFormat* format, SoundInputCallback callback, void* context) {
    auto device = std::make_unique<Device>();
    device->record = callback;
    device->context = context;
    device->frame_bytes = format->channels * sizeof(Sint16);
    SoundDeviceFormat exact = *format;
    return Open(std::move(device), exact);
}

bool IsThere(const void* opened) {
    const auto& device = *static_cast<const Device*>(opened);
    return device.silent != nullptr || SDL_GetAudioDeviceStatus(device.id) != SDL_AUDIO_STOPPED;
}

void Close(void* opened) {
    const std::unique_ptr<Device> device(static_cast<Device*>(opened));
    if (device->silent != nullptr) return;
    SDL_CloseAudioDevice(device->id);
    LeaveDriver();
}

} // namespace

extern "C" __attribute__((visibility("default"))) const void* corvane_module() {
    static const SdlModule module = {OpenOutput, OpenInput, IsThere, Close};
    return &module;
}
