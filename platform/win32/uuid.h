// Identifiers that are never made twice.
#pragma once

#include "platform/win32/types.h"

#include <array>
#include <cstdint>

struct UUID {
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    std::array<std::uint8_t, 8> Data4;
};

inline constexpr LONG RPC_S_OK = 0;
inline constexpr LONG RPC_S_UUID_NO_ADDRESS = 1739;

/// A random identifier (version 4); RPC_S_UUID_NO_ADDRESS when the system has no random numbers to give.
LONG UuidCreate(UUID* uuid);
