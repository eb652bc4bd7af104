// A fade is a track of one tween sample, which the sound track refers to and its media takes as volume.
#include "sounds/fade_movie.h"

#include "platform/quicktime/movies/atom_containers.h"
#include "platform/quicktime/movies/media.h"
#include "sounds/sound_track.h"

#include <algorithm>
#include <array>
#include <limits>

namespace corvane {
namespace {

constexpr OSType kSoundSource = qt::Code("ssrc");
constexpr std::uint32_t kShortTween = 1; // values of 16 bits

constexpr std::array<std::byte, 4> BigEndian(std::uint32_t value) {
    return {static_cast<std::byte>(value >> 24), static_cast<std::byte>(value >> 16),
            static_cast<std::byte>(value >> 8), static_cast<std::byte>(value)};
}

// An atom container under construction; the first failure stays.
class AtomTree {
public:
    AtomTree() {
        QTAtomContainer container = nullptr;
        code_ = QTNewAtomContainer(&container);
        container_ = qt::MemoryHandle(container);
    }

    QTAtom Add(QTAtom parent, OSType type, std::span<const std::byte> data = {}) {
        QTAtom atom = 0;
        if (code_ == noErr) code_ = QTInsertChild(container_.get(), parent, type, 1, data, &atom);
        return atom;
    }

    [[nodiscard]] OSErr Code() const { return code_; }
    [[nodiscard]] Handle get() const { return container_.get(); }

private:
    qt::MemoryHandle container_;
    OSErr code_ = noErr;
};

AtomTree MakeTween(const FadeRamp& ramp) {
    const auto volume = [](std::int16_t value) { return static_cast<std::uint32_t>(value) & 0xFFFFU; };
    AtomTree tree;
    const QTAtom entry = tree.Add(kParentAtomIsContainer, kTweenEntry);
    tree.Add(entry, kTweenType, BigEndian(kShortTween));
    tree.Add(entry, kTweenData, BigEndian(volume(ramp.first_volume) << 16 | volume(ramp.last_volume)));
    tree.Add(entry, kTweenStartOffset, BigEndian(0));
    tree.Add(entry, kTweenDuration, BigEndian(static_cast<std::uint32_t>(ramp.end - ramp.begin)));
    return tree;
}

// Sample descriptions of other media than sounds are as they stand in files.
constexpr std::array<std::uint8_t, 16> kTweenDescription = {0, 0, 0, 16, 't', 'w', 'e', 'n',
                                                            0, 0, 0, 0,  0,   0,   0,   1};

std::int32_t AddTweenTrack(Movie movie, const FadeRamp& ramp, Track& track) {
    track = NewMovieTrack(movie, 0, 0, 0);
    const Media media =
        NewTrackMedia(track, kTweenEntry, GetMovieTimeScale(movie), nullptr, qt::kHandleDataHandler);
    if (media == nullptr) return GetMoviesError();
    Handle block = nullptr;
    if (const OSErr code = PtrToHand(kTweenDescription.data(), &block, kTweenDescription.size());
        code != noErr)
        return code;
    const qt::MemoryHandle description(block);
    const AtomTree tween = MakeTween(ramp);
    if (tween.Code() != noErr) return tween.Code();
    const TimeValue duration = ramp.end - ramp.begin;
    OSErr code = BeginMediaEdits(media);
    if (code == noErr) code = AddMediaSample(media, qt::HandleBytes(tween.get()), duration, block, 1);
    if (code == noErr) code = EndMediaEdits(media);
    return code == noErr ? InsertMediaIntoTrack(track, ramp.begin, 0, duration, kNormalRate) : code;
}

std::int32_t LetTweenSetVolume(const SoundTrack& sound, Track tween) {
    std::int32_t index = 0;
    if (const OSErr code = AddTrackReference(sound.track, tween, kSoundSource, &index); code != noErr)
        return code;
    AtomTree map;
    const QTAtom input = map.Add(kParentAtomIsContainer, kTrackModifierInput);
    map.Add(input, kTrackModifierType, BigEndian(kTrackModifierTypeVolume));
    map.Add(input, kInputMapSubInputID, BigEndian(static_cast<std::uint32_t>(index)));
    return map.Code() == noErr ? SetMediaInputMap(sound.media, map.get()) : map.Code();
}

} // namespace

std::int32_t MakeFadedMovie(Movie movie, const FadeRequest& request, qt::OwnedMovie& faded) {
    const SoundTrack sound = FirstSoundTrack(movie);
    if (sound.code != 0) return sound.code;
    const TimeScale scale = GetMovieTimeScale(movie);
    const auto duration = static_cast<std::int32_t>(
        std::min<TimeValue>(GetMovieDuration(movie), std::numeric_limits<std::int32_t>::max()));
    const FadeRamp ramp = MakeFadeRamp(SanitiseFade(request, duration, scale), scale);
    Track tween = nullptr;
    if (const std::int32_t code = AddTweenTrack(movie, ramp, tween); code != 0) return code;
    if (const std::int32_t code = LetTweenSetVolume(sound, tween); code != 0) return code;
    const TimeValue begin = request.fade_out ? 0 : ramp.begin;
    const TimeValue end = request.fade_out ? TimeValue{ramp.end} : GetMovieDuration(movie);
    if (const OSErr code = SetMovieSelection(movie, begin, end - begin); code != noErr) return code;
    faded.reset(CopyMovieSelection(movie));
    return faded != nullptr ? noErr : GetMoviesError();
}

} // namespace corvane
