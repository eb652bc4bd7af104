#include "sounds/functions.h"

#include "platform/quicktime/movie_toolbox.h"
#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "plugin/hex_blocks.h"
#include "plugin/host_data.h"
#include "sounds/recording_manager.h"

#include <string_view>

namespace corvane {
namespace {

/// What is lent for the time of the dialog.
class Borrowed {
public:
    Borrowed() = default;
    Borrowed(const Borrowed&) = delete;
    Borrowed& operator=(const Borrowed&) = delete;
    ~Borrowed() {
        RecordingManager::Instance().ReturnChannel(channel);
        RecordingManager::Instance().ReturnGrabber(grabber);
    }

    SeqGrabComponent grabber = RecordingManager::Instance().BorrowGrabber();
    SGChannel channel = RecordingManager::Instance().BorrowChannel();
};

FM_Error AskForFormat(const Borrowed& recording, CVSError& error) {
    constexpr std::int16_t kSoft = 0x19;
    SGSetGWorld(recording.grabber, nullptr);
    SGSetChannelUsage(recording.channel, 0);
    ComponentResult code = SGSetMaximumRecordTime(recording.grabber, 0);
    if (code != noErr) return error.Fail(code, "Error settings maximum record time.");
    code = SGSetChannelVolume(recording.channel, kSoft);
    if (code != noErr) return error.Fail(code, "Error settings channel volume.");
    code = SGSettingsDialog(recording.grabber, recording.channel);
    return code == noErr ? kFM_ErrorNone : error.Fail(code, {});
}

FM_Error PutFormat(const Borrowed& recording, FM_Data& result, CVSError& error) {
    UserData list = nullptr;
    const ComponentResult got = SGGetSettings(recording.grabber, &list);
    if (got != noErr) return error.Fail(got, "Error getting recording settings.");
    const qt::OwnedUserData settings(list);
    const qt::MemoryHandle block(NewHandle(0));
    const OSErr read = PutUserDataIntoHandle(list, block.get());
    if (read != noErr) return error.Fail(read, "Error reading settings.");
    const auto bytes = qt::HandleBytes(block.get());
    const SettingsBytes hex = SettingsToHexBlock({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (hex.code != 0) return error.Fail(hex.code, "Error compressing data.");
    error.SetCode(SetResultText(result, hex.bytes));
    return error.HostCode();
}

FM_Error ShowDialog(FM_Data& result, CVSError& error) {
    const Borrowed recording;
    if (recording.grabber == nullptr)
        return error.Fail(kErrorUnknown,
                          "Recording not available at this time. Try to stop current recording.");
    std::int32_t version = 0;
    if (const OSErr code = Gestalt(qt::Code("qtim"), &version); code != noErr) return error.Fail(code, {});
    if (recording.channel == nullptr)
        return error.Fail(kErrorUnknown2, "Recording channel not available at this time. Try to change input "
                                          "device or restart Corvane.");
    if (const FM_Error failed = AskForFormat(recording, error)) return failed;
    return PutFormat(recording, result, error);
}

} // namespace

FM_Error RecordSoundFormatDialog(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data& result) {
    CVSError& error = BeginCall("Media_RecordSoundFormatDialog");
    const qt::CurrentPort port(DrawingPort());
    ClearResult(result);
    if (ShowDialog(result, error) != kFM_ErrorNone) ClearResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
