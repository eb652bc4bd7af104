// How sound is recorded, as people choose it.
#pragma once

#include "platform/quicktime/movies/pcm.h"
#include "platform/quicktime/user_data.h"

namespace qt {

struct RecordingSettings {
    std::uint32_t rate = 44'100; ///< Hz
    std::uint32_t channels = 2;

    /// Signed 16-bit samples of this machine's byte order.
    [[nodiscard]] PcmLayout Layout() const;
};

/// Shows the dialog; false on Cancel, which changes nothing. Its keys are "rate" and "channels".
bool AskForRecordingSettings(RecordingSettings& settings);

/// The settings as a new list of texts (see SGGetSettings).
OSErr DescribeRecordingSettings(const RecordingSettings& settings, UserData* list);

} // namespace qt
