#include "plugin/registry.h"

#include "files/default_folder.h"
#include "files/table.h"
#include "images/table.h"
#include "plugin/errors.h"
#include "plugin/functions.h"
#include "plugin/guard.h"
#include "plugin/host_data.h"
#include "plugin/results.h"
#include "plugin/string_table.h"
#include "sounds/table.h"

#include <array>
#include <cstdint>
#include <span>

namespace corvane {
namespace {

constexpr std::uint32_t kPluginId = FourCC("CV70");
constexpr std::int16_t kFirstCountedId = 51;
constexpr std::size_t kHandlerLimit = 128; ///< above every id in use

struct Registry {
    std::int16_t next_id = kFirstCountedId;                       ///< of the image and file functions
    std::array<FM_ExternalFunction, kHandlerLimit> handlers = {}; ///< by function id
};

Registry g_registry;

FM_ExternalFunction HandlerOf(std::int16_t id) {
    const auto index = static_cast<std::size_t>(id); // a negative id is beyond every limit
    return index < kHandlerLimit ? g_registry.handlers[index] : nullptr;
}

// A call that an exception ended leaves nothing behind but its code.
void EndFailedCall(FM_ExternalFunction handler, std::int16_t id, FM_Error code, FM_Data& result) {
    ClearResult(result);
    const bool is_of_sounds = id < kFirstCountedId || handler == GetMetadata; // which has two ids
    if (is_of_sounds && handler != Version && handler != GetLastError) LastError().SetCode(code);
}

// What the host calls for every function of this library.
FM_Error RunHandler(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                    FM_Data& result) noexcept {
    const FM_ExternalFunction handler = HandlerOf(id);
    if (handler == nullptr) return FM_Error{kErrorUnknown};
    bool returned = false;
    const FM_Error answer = Guarded([&] {
        const FM_Error code = handler(id, environment, parameters, result);
        returned = true;
        return code;
    });
    if (!returned)
        Guarded([&] {
            EndFailedCall(handler, id, answer, result);
            return kFM_ErrorNone;
        });
    // A call whose result is no text from the buffer may have put one there all the same: resolving a path
    // tells of a chosen file or an unknown code. The next call's result must not begin with it.
    DiscardResultBuffer();
    return answer;
}

FM_Error Register(std::int16_t id, const FM_Text* name, const FM_Text* prototype, std::int16_t minimum,
                  std::int16_t maximum, std::uint32_t flags, FM_ExternalFunction handler) {
    g_registry.handlers.at(static_cast<std::size_t>(id)) = handler;
    const QuadChar plugin = NewQuadChar(kPluginId);
    return Host(FM_ExprEnv_RegisterExternalFunction, plugin.get(), id, name, prototype, minimum, maximum,
                flags, RunHandler);
}

FM_Error RegisterResourceFunction(const SoundFunction& row) {
    const LoadedString resource(kFirstPrototypeString + static_cast<UINT>(row.id));
    const Text prototype = NewText();
    Host(FM_Text_AssignUnicode, prototype.get(), resource.c_str());
    const Text name = NewText();
    Host(FM_Text_AssignUnicode, name.get(), resource.c_str());
    const std::int32_t bracket =
        Host(FM_Text_Find, name.get(), TextFromBytes("(", kFM_EncodingNative).get(), 0);
    if (bracket != kFM_NotFound) Host(FM_Text_DeleteText, name.get(), bracket, kFM_ToEnd);
    return Register(row.id, name.get(), prototype.get(), row.minimum, row.maximum, row.flags, row.handler);
}

FM_Error RegisterFunction(const CountedFunction& row) {
    const std::int16_t id = g_registry.next_id++;
    if (row.handler == nullptr) return kFM_ErrorNone;
    return Register(id, TextFromBytes(row.name, kFM_EncodingNative).get(),
                    TextFromBytes(row.prototype, kFM_EncodingNative).get(), row.minimum, row.maximum,
                    kShownFunction, row.handler);
}

void RegisterFunctions(std::span<const CountedFunction> rows) {
    for (const CountedFunction& row : rows) Guarded([&] { return RegisterFunction(row); });
}

// Ids that were never registered are refused, which changes nothing.
void UnregisterFunction(std::int16_t id) {
    Guarded([&] { return Host(FM_ExprEnv_UnRegisterExternalFunction, NewQuadChar(kPluginId).get(), id); });
}

void RegisterFileFunctions() {
    ResetDefaultFolder();
    RegisterFunctions(FileFunctions());
}

} // namespace

bool RegisterSoundFunctions() {
    for (const SoundFunction& row : SoundFunctions()) {
        if (Guarded([&] { return RegisterResourceFunction(row); }) == kFM_ErrorNone) continue;
        for (auto id = static_cast<std::int16_t>(row.id - 1); id > 0; --id) UnregisterFunction(id);
        return false;
    }
    return true;
}

void RegisterImageAndFileFunctions() {
    g_registry.next_id = kFirstCountedId; // a start-up after a shutdown hands out the same ids again
    RegisterFunctions(ImageFunctionsBeforeFiles());
    RegisterFileFunctions();
    RegisterFunctions(ImageFunctionsAfterFiles());
}

void UnregisterAllFunctions() {
    for (; g_registry.next_id > 0; --g_registry.next_id) UnregisterFunction(g_registry.next_id);
}

} // namespace corvane
