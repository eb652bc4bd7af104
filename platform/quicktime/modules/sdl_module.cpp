#include "platform/quicktime/modules/sdl_module.h"

#include <SDL.h>

#include <memory>
#include <new>

namespace {

struct Device {
    SDL_AudioDeviceID id = 0;
    std::uint32_t frame_bytes = 0;
    SoundOutputCallback play = nullptr;
    SoundInputCallback record = nullptr;
    void* context = nullptr;
};

int g_devices = 0; // that are open; the driver runs while there are any

void Play(void* user, Uint8* stream, int bytes) {
    const auto& device = *static_cast<Device*>(user);
    const auto frames = static_cast<std::size_t>(bytes) / device.frame_bytes;
    device.play(device.context, static_cast<float*>(static_cast<void*>(stream)), frames);
}

void Record(void* user, Uint8* stream, int bytes) {
    const auto& device = *static_cast<Device*>(user);
    device.record(device.context, stream, static_cast<std::size_t>(bytes));
}

bool IsDriverChosen() {
    return SDL_getenv("SDL_AUDIODRIVER") != nullptr;
}

// The library would write its warnings to standard error. Without a choice a machine that has no device gets
// the driver that only keeps time. Devices are counted first, for opening one that is not there makes some
// drivers' libraries complain on standard error.
bool StartDriver(bool input) {
    SDL_LogSetOutputFunction([](void*, int, SDL_LogPriority, const char*) {}, nullptr);
    if (SDL_AudioInit(nullptr) == 0) {
        if (IsDriverChosen() || SDL_GetNumAudioDevices(input ? 1 : 0) != 0) return true;
        SDL_AudioQuit();
    } else if (IsDriverChosen()) {
        return false;
    }
    return SDL_AudioInit("dummy") == 0;
}

void StopDriver() {
    if (g_devices == 0) SDL_AudioQuit();
}

bool OpenDevice(Device& device, const SDL_AudioSpec& wanted, SDL_AudioSpec& got) {
    const bool input = device.record != nullptr;
    const int changes = input ? 0 : SDL_AUDIO_ALLOW_FREQUENCY_CHANGE;
    const auto open = [&] {
        device.id = SDL_OpenAudioDevice(nullptr, input ? 1 : 0, &wanted, &got, changes);
        return device.id != 0;
    };
    if (g_devices == 0 && !StartDriver(input)) return false;
    if (open()) return true;
    if (g_devices > 0 || IsDriverChosen()) return false;
    SDL_AudioQuit();
    return SDL_AudioInit("dummy") == 0 && open();
}

Device* Open(std::unique_ptr<Device> device, SoundDeviceFormat& format, const char** why) {
    const bool input = device->record != nullptr;
    SDL_AudioSpec wanted{};
    wanted.freq = static_cast<int>(format.rate);
    wanted.format = input ? AUDIO_S16SYS : AUDIO_F32SYS;
    wanted.channels = static_cast<Uint8>(format.channels);
    wanted.samples = static_cast<Uint16>(format.frames);
    wanted.callback = input ? Record : Play;
    wanted.userdata = device.get();
    device->frame_bytes =
        format.channels * static_cast<std::uint32_t>(input ? sizeof(Sint16) : sizeof(float));
    SDL_AudioSpec got{};
    if (!OpenDevice(*device, wanted, got)) {
        if (why != nullptr) *why = SDL_GetError();
        StopDriver();
        return nullptr;
    }
    ++g_devices;
    format.rate = static_cast<std::uint32_t>(got.freq);
    SDL_PauseAudioDevice(device->id, 0);
    return device.release();
}

void* OpenOutput(SoundDeviceFormat* format, SoundOutputCallback callback, void* context, const char** why) {
    std::unique_ptr<Device> device(new (std::nothrow) Device);
    if (device == nullptr) return nullptr;
    device->play = callback;
    device->context = context;
    return Open(std::move(device), *format, why);
}

void* OpenInput(const SoundDeviceFormat* format, SoundInputCallback callback, void* context,
                const char** why) {
    std::unique_ptr<Device> device(new (std::nothrow) Device);
    if (device == nullptr) return nullptr;
    device->record = callback;
    device->context = context;
    SoundDeviceFormat exact = *format;
    return Open(std::move(device), exact, why);
}

bool IsThere(const void* device) {
    return SDL_GetAudioDeviceStatus(static_cast<const Device*>(device)->id) != SDL_AUDIO_STOPPED;
}

void Close(void* opened) {
    const std::unique_ptr<Device> device(static_cast<Device*>(opened));
    SDL_CloseAudioDevice(device->id);
    --g_devices;
    StopDriver();
}

} // namespace

extern "C" __attribute__((visibility("default"))) const void* corvane_module() {
    static const SdlModule module = {OpenOutput, OpenInput, IsThere, Close};
    return &module;
}
