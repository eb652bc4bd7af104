// Media: the samples of a track, where they lie and what they are.
#pragma once

#include "platform/quicktime/movies/movies.h"

inline constexpr OSErr badDataRefIndex = -2050;

/// Makes the media of a track that has none: 'soun', 'text', 'twen' or another type. Samples that are added
/// go to memory for a 'hndl' reference (its block is not used), and to the movie's own file (see
/// CreateMovieStorage) without a reference; noDefaultDataRef when the movie has none. An 'alis' reference
/// names the file that AddMediaSampleReference means.
Media NewTrackMedia(Track track, OSType type, TimeScale scale, Handle data_reference, OSType reference_type);

OSType GetMediaType(Media media);
Track GetMediaTrack(Media media);
TimeScale GetMediaTimeScale(Media media);
TimeValue GetMediaDuration(Media media); ///< of a sound: its frames
/// The media time that a track plays at a movie time; -1 when it plays none then.
TimeValue TrackTimeToMediaTime(TimeValue movie_time, Track track);
std::uint32_t GetMediaCreationTime(Media media); ///< seconds since 1 January 1904, GMT
std::uint32_t GetMediaModificationTime(Media media);
std::int16_t GetMediaLanguage(Media media);
std::int16_t GetMediaQuality(Media media);

std::int32_t GetMediaSampleDescriptionCount(Media media);
/// Copies a sample description (index from 1) into the handle, which is resized. See sound_description.h for
/// those of sounds; others are as in files.
OSErr GetMediaSampleDescription(Media media, std::int32_t index, Handle description);

inline constexpr std::int32_t dataRefSelfReference = 1; ///< the samples lie in the movie's own file

/// A copy of where the media's data lies (index from 1). badDataRefIndex when there is none.
OSErr GetMediaDataRef(Media media, std::int32_t index, qt::DataReference& reference,
                      std::int32_t* attributes);

/// Adding samples happens between these two; anything else is invalidEditState. Opened movies are added to at
/// the end of their file.
OSErr BeginMediaEdits(Media media);
OSErr EndMediaEdits(Media media);

/// Copies `data` as `samples` samples of `duration` media units each to the media's end. The sizes of the
/// samples are equal; those of a sound are frames of one unit, unless its description is of packets. The
/// block's owner stays the caller.
OSErr AddMediaSample(Media media, std::span<const std::byte> data, TimeValue duration, Handle description,
                     std::int64_t samples);

/// Reads up to `count` samples of one description from `time` on into `data`, which is resized to what was
/// read, in blocks as large as the caller likes; `samples` gets their number: less than `count` only at the
/// end of the samples, of their file, or of their description. A media whose samples only its decoder knows
/// (FLAC, Ogg and the like) gives cantFindHandler. `description` (null: not wanted) is resized as above.
OSErr GetMediaSample(Media media, TimeValue time, std::int64_t count, Handle data, Handle description,
                     std::int64_t* samples);

/// What modifies the media while it plays: an atom container (see atom_containers.h), copied. Known is, in an
/// atom 'in', 'ty' 3 (volume) and 'subi' n: the n-th 'ssrc' reference of the track is a track of tween
/// samples that scale the volume, 256 being full.
OSErr SetMediaInputMap(Media media, Handle input_map);
