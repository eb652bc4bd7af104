#include "sounds/functions.h"

#include "platform/quicktime/movie_toolbox.h"
#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "plugin/workarounds.h"
#include "sounds/media_pool.h"
#include "sounds/recording_manager.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <string_view>

namespace corvane {
namespace {

struct Tag {
    std::string_view name;
    std::int32_t (*handler)(const FM_DataVect& parameters, FM_Data& result);
};

std::int32_t SetFlag(FM_Data& result, bool flag) {
    return SetResultText(result, flag ? "1" : "0");
}

std::int32_t GetRecording(const FM_DataVect&, FM_Data& result) {
    return SetFlag(result, RecordingManager::Instance().IsRecording());
}

std::int32_t GetPlayStatus(const FM_DataVect&, FM_Data& result) {
    return SetFlag(result, MediaPool::Instance().IsPlaying(kAllEntries));
}

std::int32_t GetQuickTimeVersion(const FM_DataVect&, FM_Data& result) {
    std::int32_t version = 0;
    const OSErr error = Gestalt(qt::Code("qtim"), &version);
    if (error != 0) return error;
    std::string digits;
    for (const int shift : {24, 20, 16}) digits += std::to_string(version >> shift & 0xF);
    return SetResultText(result, digits);
}

template <Workaround kWhich>
std::int32_t GetWorkaround(const FM_DataVect&, FM_Data& result) {
    return SetFlag(result, WorkaroundValue(kWhich));
}

template <Workaround kWhich>
std::int32_t SetWorkaroundTag(const FM_DataVect& parameters, FM_Data& result) {
    if (Host(FM_DataVect_Size, &parameters) < 2) {
        SetWorkaround(kWhich, 1, false);
        return SetResultText(result, "");
    }
    const bool value = Host(FM_DataVect_AtAsBoolean, &parameters, 1);
    SetWorkaround(kWhich, value, false);
    return SetFlag(result, value);
}

template <float (MediaPool::*kGet)(EntryId)>
std::int32_t GetPlaybackDefault(const FM_DataVect&, FM_Data& result) {
    const double value = (MediaPool::Instance().*kGet)(kAllEntries);
    return SetResultNumber(result, std::floor(value * 100) / 100);
}

template <std::int32_t (MediaPool::*kSet)(EntryId, float)>
std::int32_t SetPlaybackDefault(const FM_DataVect& parameters, FM_Data&) {
    if (Host(FM_DataVect_Size, &parameters) < 2) return kErrorWrongParameter;
    return (MediaPool::Instance().*kSet)(kAllEntries, ReadNumberParameter(parameters, 1).value);
}

constexpr std::array<Tag, 10> kGetTags = {{
    {"recording", GetRecording},
    {"quicktime-version", GetQuickTimeVersion},
    {"quicktime", GetQuickTimeVersion},
    {"lmworkaround", GetWorkaround<Workaround::kLinkMedia>},
    {"earlierqtcompatibility", GetWorkaround<Workaround::kLinkMedia>},
    {"rfworkaround", GetWorkaround<Workaround::kRemoteFile>},
    {"playstatus", GetPlayStatus},
    {"volume", GetPlaybackDefault<&MediaPool::GetVolume>},
    {"tempo", GetPlaybackDefault<&MediaPool::GetTempo>},
    {"balance", GetPlaybackDefault<&MediaPool::GetBalance>},
}};

constexpr std::array<Tag, 6> kSetTags = {{
    {"lmworkaround", SetWorkaroundTag<Workaround::kLinkMedia>},
    {"earlierqtcompatibility", SetWorkaroundTag<Workaround::kLinkMedia>},
    {"rfworkaround", SetWorkaroundTag<Workaround::kRemoteFile>},
    {"volume", SetPlaybackDefault<&MediaPool::SetVolume>},
    {"tempo", SetPlaybackDefault<&MediaPool::SetTempo>},
    {"balance", SetPlaybackDefault<&MediaPool::SetBalance>},
}};

FM_Error RunTag(std::span<const Tag> tags, const FM_DataVect& parameters, FM_Data& result, CVSError& error) {
    const Read<std::string> tag = ReadTextParameter(parameters, 0);
    if (tag.code != 0) return error.Fail(tag.code, "Could not get parameter 1 as text.");
    const std::string name = ToLowerAscii(tag.value);
    const auto found =
        std::find_if(tags.begin(), tags.end(), [&](const Tag& candidate) { return candidate.name == name; });
    if (found == tags.end()) return error.Fail(kErrorWrongParameter, "Invalid tag.");
    error.SetCode(found->handler(parameters, result));
    return error.HostCode();
}

} // namespace

FM_Error Get(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_Get");
    const qt::CurrentPort port(DrawingPort());
    if (Host(FM_DataVect_Size, &parameters) == 0)
        return error.Fail(kErrorWrongParameter, "This function requires exactly 1 parameter.");
    return RunTag(kGetTags, parameters, result, error);
}

FM_Error Set(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_Set");
    const qt::CurrentPort port(DrawingPort());
    if (Host(FM_DataVect_Size, &parameters) == 0)
        return error.Fail(kErrorWrongParameter, "This function requires 1 or 2 parameters.");
    return RunTag(kSetTags, parameters, result, error);
}

} // namespace corvane
