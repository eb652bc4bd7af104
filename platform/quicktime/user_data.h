// User data: lists of texts under four-character types, in the order in which the types came.
#pragma once

#include "platform/quicktime/handles.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qt {
struct UserDataRecord;
} // namespace qt

using UserData = qt::UserDataRecord*;

inline constexpr OSErr userDataItemNotFound = -2026;

OSErr NewUserData(UserData* list);
void DisposeUserData(UserData list); ///< null is allowed

/// Adds a text behind those of its type.
OSErr AddUserDataText(UserData list, std::string_view text, OSType type);

/// The type behind `type` in the list, the first for 0; 0 at the end.
OSType GetNextUserDataType(UserData list, OSType type);
std::int16_t CountUserDataType(UserData list, OSType type); ///< at most 32,767
/// Copies the index-th text of a type, from 1, without a terminator. userDataItemNotFound.
OSErr GetUserDataText(UserData list, std::string& text, OSType type, std::int32_t index);

/// Writes the whole list into the block, which is resized: each text as a 32-bit size that counts its header,
/// its type, then its bytes; numbers big-endian.
OSErr PutUserDataIntoHandle(UserData list, Handle block);

namespace qt {

struct UserDataDisposer {
    void operator()(UserData list) const { DisposeUserData(list); }
};

/// Owner of a list.
using OwnedUserData = std::unique_ptr<UserDataRecord, UserDataDisposer>;

} // namespace qt
