#include "images/functions.h"
#include "images/mouse_position.h"
#include "platform/win32/windows.h"
#include "plugin/results.h"

#include <string>

namespace corvane {
namespace {

/// In pixels: from the corner of the window's content, and to the window's right and lower edge.
struct MousePosition {
    std::int16_t x;
    std::int16_t y;
    std::int16_t right;
    std::int16_t bottom;
};

constexpr MousePosition kUnknown = {-1, -1, -1, -1};

MousePosition g_position = kUnknown;

/// Differences can take 33 bits; their low 16 are kept.
std::int16_t Difference(std::int64_t to, std::int64_t from) {
    return static_cast<std::int16_t>(to - from);
}

void Update(MousePosition& position) {
    // The width of the frame of the host's document windows, and its height with the title bar.
    constexpr std::int32_t kFrameLeft = 6;
    constexpr std::int32_t kFrameTop = 25;
    const HWND document = GetTopWindow(GetTopWindow(GetActiveWindow()));
    RECT window;
    POINT pointer;
    if (document == nullptr || GetCursorPos(&pointer) == FALSE || GetWindowRect(document, &window) == FALSE)
        return;
    position = {Difference(pointer.x, std::int64_t{window.left} + kFrameLeft),
                Difference(pointer.y, std::int64_t{window.top} + kFrameTop),
                Difference(window.right, pointer.x), Difference(window.bottom, pointer.y)};
}

} // namespace

void ResetMousePosition() {
    g_position = kUnknown;
}

FM_Error GetMouseUp(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!CheckParameterCount(parameters, 0)) {
        Update(g_position);
        SetResultBufferText(std::to_string(g_position.x) + "|" + std::to_string(g_position.y) + "|" +
                            std::to_string(g_position.right) + "|" + std::to_string(g_position.bottom));
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
