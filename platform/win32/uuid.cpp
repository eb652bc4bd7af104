#include "platform/win32/uuid.h"

#include <sys/random.h>

LONG UuidCreate(UUID* uuid) {
    if (getrandom(uuid, sizeof *uuid, 0) != static_cast<ssize_t>(sizeof *uuid)) return RPC_S_UUID_NO_ADDRESS;
    uuid->Data3 = static_cast<WORD>((uuid->Data3 & 0x0FFF) | 0x4000);
    uuid->Data4[0] = static_cast<std::uint8_t>((uuid->Data4[0] & 0x3F) | 0x80);
    return RPC_S_OK;
}
