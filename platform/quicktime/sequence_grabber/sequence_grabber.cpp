#include "platform/quicktime/sequence_grabber/sequence_grabber.h"

#include "platform/quicktime/sequence_grabber/captured_sound.h"
#include "platform/quicktime/sequence_grabber/recording_file.h"
#include "platform/quicktime/sequence_grabber/recording_settings.h"
#include "platform/quicktime/sound_output/sound_output.h"

#include <algorithm>
#include <limits>
#include <string>
#include <sys/statvfs.h>

namespace qt {

struct GrabberChannel {
    std::int32_t usage = 0;
    RecordingSettings settings;
};

namespace {

class SequenceGrabber final : public Component {
public:
    ~SequenceGrabber() override { Stop(); }

    ComponentResult NewChannel(OSType type, SGChannel* made) {
        *made = nullptr;
        if (type != Code("soun") || channel_ != nullptr) return badComponentType;
        channel_ = std::make_unique<GrabberChannel>();
        *made = channel_.get();
        return noErr;
    }

    ComponentResult SetTarget(Handle reference, OSType type, std::uint32_t flags) {
        if (IsRecording() || (flags & seqGrabToDisk) == 0) return cantDoThatInCurrentMode;
        target_ = CopyDataReference(reference, type);
        return target_.handle ? noErr : memFullErr;
    }

    ComponentResult Prepare() {
        if (IsRecording() || !target_.handle) return cantDoThatInCurrentMode;
        if (channel_ == nullptr || channel_->usage != seqGrabRecord) return seqGrabInfoNotAvailable;
        file_.reset();
        auto file = std::make_unique<RecordingFile>();
        const PcmLayout layout = channel_->settings.Layout();
        const OSErr code = file->Open(target_.handle.get(), target_.type, layout);
        if (code == noErr) file_ = std::move(file);
        return code;
    }

    ComponentResult Start() {
        if (IsRecording() || file_ == nullptr) return cantDoThatInCurrentMode;
        module_ = SoundDevices();
        if (module_ == nullptr) return noHardwareErr;
        captured_ = std::make_unique<CapturedSound>();
        const PcmLayout layout = channel_->settings.Layout();
        constexpr std::uint32_t kBlocksPerSecond = 50;
        const SoundDeviceFormat format = {layout.rate, layout.channels, layout.rate / kBlocksPerSecond};
        const auto take = [](void* captured, const void* samples, std::size_t bytes) {
            static_cast<CapturedSound*>(captured)->Take({static_cast<const std::byte*>(samples), bytes});
        };
        device_ = module_->open_input(&format, take, captured_.get());
        const OSErr code = IsRecording() ? file_->Begin() : noHardwareErr;
        if (code != noErr) {
            CloseDevice();
            captured_.reset();
        }
        return code;
    }

    ComponentResult Pause(bool pause) {
        if (!IsRecording()) return cantDoThatInCurrentMode;
        captured_->Pause(pause);
        return noErr;
    }

    ComponentResult Idle() {
        if (!IsRecording()) return noErr;
        if (const OSErr code = WriteCaptured(); code != noErr) return code;
        return module_->is_there(device_) ? noErr : noHardwareErr;
    }

    ComponentResult Stop() {
        CloseDevice();
        OSErr code = noErr;
        if (captured_ != nullptr) {
            code = WriteCaptured();
            const OSErr finished = file_->Finish();
            if (code == noErr) code = finished;
        }
        captured_.reset();
        file_.reset();
        return code;
    }

    ComponentResult FreeBytes(std::int64_t& bytes) const {
        bytes = 0;
        struct statvfs disk {};
        if (file_ == nullptr) return seqGrabInfoNotAvailable;
        if (statvfs(file_->Path().c_str(), &disk) != 0) return ioErr;
        bytes = static_cast<std::int64_t>(disk.f_bavail * disk.f_frsize);
        return noErr;
    }

    [[nodiscard]] bool IsRecording() const { return device_ != nullptr; }
    [[nodiscard]] GrabberChannel* Channel() const { return channel_.get(); }

private:
    void CloseDevice() {
        if (IsRecording()) module_->close(device_);
        device_ = nullptr;
    }

    OSErr WriteCaptured() {
        const bool complete = captured_->Give(block_);
        const OSErr code = file_->Append(block_);
        return code == noErr && !complete ? memFullErr : code;
    }

    std::unique_ptr<GrabberChannel> channel_;
    DataReference target_;
    std::unique_ptr<RecordingFile> file_; ///< from preparing to stopping
    const SdlModule* module_ = nullptr;
    std::unique_ptr<CapturedSound> captured_; ///< while recording
    void* device_ = nullptr;
    Bytes block_;
};

/// Calls `work` with the grabber.
template <class Work>
ComponentResult WithGrabber(SeqGrabComponent instance, Work&& work) {
    auto* grabber = dynamic_cast<SequenceGrabber*>(instance);
    return grabber != nullptr ? work(*grabber) : kBadComponentInstance;
}

} // namespace

std::unique_ptr<Component> OpenSequenceGrabber(OSType) {
    return std::make_unique<SequenceGrabber>();
}

} // namespace qt

using qt::SequenceGrabber;
using qt::WithGrabber;

ComponentResult SGInitialize(SeqGrabComponent grabber) {
    return WithGrabber(grabber, [](SequenceGrabber&) { return noErr; });
}

ComponentResult SGNewChannel(SeqGrabComponent grabber, OSType type, SGChannel* channel) {
    return WithGrabber(grabber, [&](SequenceGrabber& found) { return found.NewChannel(type, channel); });
}

ComponentResult SGSetGWorld(SeqGrabComponent grabber, GWorldPtr) {
    return SGInitialize(grabber);
}

ComponentResult SGSetChannelUsage(SGChannel channel, std::int32_t usage) {
    if (channel == nullptr) return paramErr;
    channel->usage = usage;
    return noErr;
}

ComponentResult SGSetChannelVolume(SGChannel channel, std::int16_t) {
    return channel != nullptr ? noErr : paramErr;
}

ComponentResult SGSetMaximumRecordTime(SeqGrabComponent grabber, std::uint32_t ticks) {
    return ticks == 0 ? SGInitialize(grabber) : paramErr;
}

ComponentResult SGSetDataRef(SeqGrabComponent grabber, Handle data_reference, OSType type,
                             std::uint32_t flags) {
    return WithGrabber(grabber,
                       [&](SequenceGrabber& found) { return found.SetTarget(data_reference, type, flags); });
}

ComponentResult SGPrepare(SeqGrabComponent grabber, bool, bool record) {
    return WithGrabber(grabber, [&](SequenceGrabber& found) {
        return record ? found.Prepare() : ComponentResult{cantDoThatInCurrentMode};
    });
}

ComponentResult SGStartRecord(SeqGrabComponent grabber) {
    return WithGrabber(grabber, [](SequenceGrabber& found) { return found.Start(); });
}

ComponentResult SGPause(SeqGrabComponent grabber, std::uint8_t pause) {
    return WithGrabber(grabber, [&](SequenceGrabber& found) { return found.Pause(pause != seqGrabUnpause); });
}

ComponentResult SGIdle(SeqGrabComponent grabber) {
    return WithGrabber(grabber, [](SequenceGrabber& found) { return found.Idle(); });
}

ComponentResult SGStop(SeqGrabComponent grabber) {
    return WithGrabber(grabber, [](SequenceGrabber& found) { return found.Stop(); });
}

ComponentResult SGGetStorageSpaceRemaining64(SeqGrabComponent grabber, std::int64_t* bytes) {
    return WithGrabber(grabber, [&](SequenceGrabber& found) { return found.FreeBytes(*bytes); });
}

ComponentResult SGGetTimeRemaining(SeqGrabComponent grabber, std::int32_t* ticks) {
    return WithGrabber(grabber, [&](SequenceGrabber& found) {
        std::int64_t bytes = 0;
        const ComponentResult code = found.FreeBytes(bytes);
        if (code != noErr) return code;
        constexpr std::int64_t kTicksPerSecond = 60;
        const qt::PcmLayout layout = found.Channel()->settings.Layout();
        const std::int64_t time = bytes / layout.FrameBytes() * kTicksPerSecond / layout.rate;
        *ticks =
            static_cast<std::int32_t>(std::min<std::int64_t>(time, std::numeric_limits<std::int32_t>::max()));
        return code;
    });
}

ComponentResult SGSettingsDialog(SeqGrabComponent grabber, SGChannel channel) {
    return WithGrabber(grabber, [&](SequenceGrabber& found) -> ComponentResult {
        if (channel == nullptr || channel != found.Channel()) return paramErr;
        if (found.IsRecording()) return cantDoThatInCurrentMode;
        constexpr ComponentResult kCancelled = -128;
        return AskForRecordingSettings(channel->settings) ? noErr : kCancelled;
    });
}

ComponentResult SGGetSettings(SeqGrabComponent grabber, UserData* settings) {
    return WithGrabber(grabber, [&](SequenceGrabber& found) -> ComponentResult {
        *settings = nullptr;
        if (found.Channel() == nullptr) return seqGrabInfoNotAvailable;
        return DescribeRecordingSettings(found.Channel()->settings, settings);
    });
}
