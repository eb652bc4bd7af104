// What the host asks of the plug-in outside its functions: to start, to stop, its strings, its preferences.
#pragma once

#include "platform/fmwrapper/call_block.h"

namespace corvane {

inline constexpr std::intptr_t kStarted = 51;
inline constexpr std::intptr_t kVersionRefused = -1;
inline constexpr std::intptr_t kDoNotEnable = -2;

/// Starts everything and registers the functions. Answers one of the three values above; after a refusal
/// no function is registered.
std::intptr_t StartUp(std::int16_t interface_version);

/// Unregisters the functions and stops everything, whatever of it had been started.
void ShutDown();

/// True from a start-up that succeeded to the next shutdown.
bool IsStarted();

/// Shows the information alert, unless it is open already.
void ShowPreferences();

/// Writes the string that `which` (an FM_StringSelector) names into a buffer of `capacity` units, cut to it
/// and zero-terminated; another value writes nothing.
void GetString(std::uint8_t which, char16_t* buffer, std::uint32_t capacity);

} // namespace corvane
