// Recording sound from the machine's input into a movie file.
//
// A grabber has one sound channel at most, which it owns. A recording is prepared, started, paused as often
// as wanted, and stopped; meanwhile SGIdle writes what has come in. It should be called every second or so:
// what comes in waits in memory, up to some minutes of it. About every second the file is brought into a
// state in which it can be opened, whatever happens then.
//
// Operations answer 0 or a code: kBadComponentInstance for an instance that is no grabber,
// seqGrabInfoNotAvailable and cantDoThatInCurrentMode for what is asked at the wrong time.
#pragma once

#include "platform/quicktime/components.h"
#include "platform/quicktime/handles.h"
#include "platform/quicktime/ports.h"
#include "platform/quicktime/user_data.h"

#include <cstdint>

namespace qt {
struct GrabberChannel;

inline constexpr OSType kSequenceGrabber = Code("grab");
std::unique_ptr<Component> OpenSequenceGrabber(OSType subtype);
} // namespace qt

using SeqGrabComponent = ComponentInstance;
using SGChannel = qt::GrabberChannel*;

inline constexpr OSErr seqGrabInfoNotAvailable = -9407;
inline constexpr OSErr cantDoThatInCurrentMode = -9408;

inline constexpr std::int32_t seqGrabRecord = 1; ///< usage of a channel: it is recorded
inline constexpr std::uint32_t seqGrabToDisk = 1;
inline constexpr std::uint32_t seqGrabAppendToFile = 8;
inline constexpr std::uint8_t seqGrabUnpause = 0;
inline constexpr std::uint8_t seqGrabPause = 1;

ComponentResult SGInitialize(SeqGrabComponent grabber);
/// Only 'soun' is known (badComponentType), and once a grabber.
ComponentResult SGNewChannel(SeqGrabComponent grabber, OSType type, SGChannel* channel);
/// Kept for what shows pictures.
ComponentResult SGSetGWorld(SeqGrabComponent grabber, GWorldPtr port);
ComponentResult SGSetChannelUsage(SGChannel channel, std::int32_t usage); ///< 0: it is not recorded
/// Of what is heard meanwhile, 8.8: nothing is, here.
ComponentResult SGSetChannelVolume(SGChannel channel, std::int16_t volume);
/// In ticks of a sixtieth of a second; 0: as long as there is room.
ComponentResult SGSetMaximumRecordTime(SeqGrabComponent grabber, std::uint32_t ticks);

/// The file of the recordings to come, an 'alis' reference to a file that is there; copied.
ComponentResult SGSetDataRef(SeqGrabComponent grabber, Handle data_reference, OSType type,
                             std::uint32_t flags);
/// Opens the file.
ComponentResult SGPrepare(SeqGrabComponent grabber, bool preview, bool record);
/// Opens the input device, and then empties the file. noHardwareErr (-200) without a device.
ComponentResult SGStartRecord(SeqGrabComponent grabber);
ComponentResult SGPause(SeqGrabComponent grabber, std::uint8_t pause);
/// Writes what has come in. noHardwareErr when the device is gone, memFullErr when more has come in than
/// memory is set aside for, dskFulErr and others of writing. After a failure only SGStop is of use.
ComponentResult SGIdle(SeqGrabComponent grabber);
/// Ends the recording and closes its file. The code is that of what could not be written; the file is good
/// up to there.
ComponentResult SGStop(SeqGrabComponent grabber);

/// Bytes and ticks of recording for which there is room on the disk of the prepared file.
ComponentResult SGGetStorageSpaceRemaining64(SeqGrabComponent grabber, std::int64_t* bytes);
ComponentResult SGGetTimeRemaining(SeqGrabComponent grabber, std::int32_t* ticks);

/// Asks for rate and channels of the recordings to come; -128 on Cancel.
ComponentResult SGSettingsDialog(SeqGrabComponent grabber, SGChannel channel);
/// The settings as texts: 'srat' the rate in Hz, 'schn' the channels, 'ssiz' the bits of a sample. The list
/// is the caller's.
ComponentResult SGGetSettings(SeqGrabComponent grabber, UserData* settings);
