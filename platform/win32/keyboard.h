// Keys and mouse buttons that are down.
#pragma once

#include <cstdint>

inline constexpr int VK_LBUTTON = 0x01;
inline constexpr int VK_RBUTTON = 0x02;
inline constexpr int VK_CONTROL = 0x11;
inline constexpr int VK_ESCAPE = 0x1B;
inline constexpr int VK_OEM_PERIOD = 0xBE;

/// Its sign is set while the key or button is down; other keys than those above never are. The display
/// tells. Without windows the presses are those of the session's input: a press without a key name is the
/// left button, and a name may be several keys, as "control+." is; on a terminal the Return key is the left
/// button, too. Each stays down for a second: as long as people who wait for it go on looking.
std::int16_t GetAsyncKeyState(int key);

namespace win32 {

/// Lets go of everything that has been pressed up to now, so that the next to look does not see it again.
void FlushInput();

} // namespace win32
