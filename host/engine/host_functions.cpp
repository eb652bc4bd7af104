// Helpers that stand for what a person does in the database application.
#include "host/engine/engine.h"
#include "host/engine/file_bytes.h"
#include "host/engine/functions.h"
#include "host/engine/stream_type.h"
#include "platform/fmwrapper/session.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace host::functions {
namespace {

constexpr FM_Error kFileNotFound = -43;

FM_Data WrongType(const Arguments& arguments, const std::string& type) {
    return arguments.GetEvaluation().Fail(kFM_ErrorWrongParameter,
                                          "\"" + type + "\" is no stream type: four bytes are needed");
}

FM_Data ContainerOf(const FM_BinaryData& container) {
    FM_Data value;
    value.SetContainer(container);
    return value;
}

// False, with the failure noted, where a person's own input counts.
bool InputIsMadeUp(const Arguments& arguments) {
    if (!fm::CurrentSession().windows) return true;
    (void)arguments.GetEvaluation().Fail(kFM_ErrorWrongParameter, "input is made up with --ui none only");
    return false;
}

FM_Data PressAfter(const Arguments& arguments, const std::string& key) {
    if (!InputIsMadeUp(arguments)) return {};
    const auto delay = std::chrono::duration<double>(arguments.Seconds(0));
    const auto when = std::chrono::steady_clock::now() +
                      std::chrono::duration_cast<std::chrono::steady_clock::duration>(delay);
    std::vector<fm::InputEvent>& input = fm::CurrentSession().input;
    input.insert(std::ranges::upper_bound(input, when, {}, &fm::InputEvent::when), {when, key});
    return {};
}

std::int32_t Coordinate(const Arguments& arguments, std::size_t index) {
    constexpr std::int64_t kLimit = 1'000'000;
    return static_cast<std::int32_t>(std::clamp(arguments.Integer(index), -kLimit, kLimit));
}

} // namespace

FM_Data HostContainer(const Arguments& arguments) {
    FM_BinaryData container;
    for (std::size_t i = 0; i + 1 < arguments.Count(); i += 2) {
        const std::string type = arguments.Utf8(i);
        const std::string path = arguments.Utf8(i + 1);
        const auto code = StreamType(type);
        if (!code) return WrongType(arguments, type);
        std::string problem;
        auto bytes = FileBytes(path, problem);
        if (bytes == nullptr) return arguments.GetEvaluation().Fail(kFileNotFound, problem);
        container.streams.push_back({*code, std::move(bytes)});
    }
    return ContainerOf(container);
}

FM_Data HostReference(const Arguments& arguments) {
    FM_BinaryData container;
    container.reference = arguments.Text(0);
    return ContainerOf(container);
}

FM_Data HostStream(const Arguments& arguments) {
    constexpr std::u16string_view kDigits = u"0123456789abcdef";
    const FM_Data value = arguments.Value(0);
    const std::string type = arguments.Utf8(1);
    const auto code = StreamType(type);
    if (!code) return WrongType(arguments, type);
    const FM_BinaryData& container = value.AsContainer();
    const std::int32_t index = container.IndexOf(*code);
    if (index < 0) return {};
    const fm::Bytes& bytes = *container.streams[static_cast<std::size_t>(index)].bytes;
    if (!arguments.GetEvaluation().Charge(bytes.size() * 2)) return {};
    std::u16string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        text.push_back(kDigits[byte >> 4]);
        text.push_back(kDigits[byte & 0xF]);
    }
    return TextOf(std::move(text));
}

FM_Data HostPump(const Arguments& arguments) {
    using Clock = std::chrono::steady_clock;
    // How often the plug-in is given idle time, and messages are looked for where nobody tells of them.
    constexpr auto kRound = std::chrono::milliseconds(10);
    const auto length = std::chrono::duration<double>(arguments.Seconds(0));
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(length);
    const Engine& engine = arguments.GetEvaluation().GetEngine();
    while (true) {
        if (engine.on_idle) engine.on_idle();
        const fm::Session& desk = fm::CurrentSession();
        if (const auto dispatch = desk.dispatch_messages) dispatch(); // the last window takes it away
        const auto now = Clock::now();
        if (now >= end) return {};
        const auto next = std::min<Clock::time_point>(now + kRound, end);
        if (desk.wait_for_messages) {
            desk.wait_for_messages(next);
        } else {
            std::this_thread::sleep_until(next);
        }
    }
}

FM_Data HostClickAfter(const Arguments& arguments) {
    return PressAfter(arguments, {});
}

FM_Data HostKeyAfter(const Arguments& arguments) {
    const std::string key = utf::ToLower(arguments.Utf8(1));
    if (key.empty()) return arguments.GetEvaluation().Fail(kFM_ErrorWrongParameter, "a key needs a name");
    return PressAfter(arguments, key);
}

FM_Data HostWindow(const Arguments& arguments) {
    if (!InputIsMadeUp(arguments)) return {};
    fm::CurrentSession().document_window = {Coordinate(arguments, 0), Coordinate(arguments, 1),
                                            Coordinate(arguments, 2), Coordinate(arguments, 3)};
    return {};
}

FM_Data HostPointer(const Arguments& arguments) {
    if (!InputIsMadeUp(arguments)) return {};
    fm::CurrentSession().pointer = {Coordinate(arguments, 0), Coordinate(arguments, 1)};
    return {};
}

} // namespace host::functions
