// Data references: a type and a block that say where data lies.
//
//   'alis'  a file: its full native path in UTF-16, no terminator
//   'url '  an address: zero-terminated text
//   'hndl'  memory: the Handle of the data, which stays its owner's
#pragma once

#include "platform/quicktime/data_source.h"
#include "platform/quicktime/handles.h"

#include <string_view>

using QTPathStyle = std::int32_t;
inline constexpr QTPathStyle kQTWindowsPathStyle = 2;

namespace qt {

inline constexpr OSType kAliasDataHandler = Code("alis");
inline constexpr OSType kUrlDataHandler = Code("url ");
inline constexpr OSType kHandleDataHandler = Code("hndl");

/// A reference and its owner.
struct DataReference {
    MemoryHandle handle;
    OSType type = 0;
};

/// The source that a reference designates. Whatever is no reference gives invalidDataRef, a type that no
/// handler reads cantFindHandler; a file fnfErr, permErr, notAFileErr or ioErr; an address the codes of
/// OpenUrlSource. A source on a 'hndl' reference reads the data in place.
OpenedSource OpenDataReference(Handle data_reference, OSType type);

} // namespace qt

/// A reference to a file by its full path, which need not exist. Only the Windows path style is known.
OSErr QTNewDataReferenceFromFullPathCFString(std::u16string_view path, QTPathStyle style, std::uint32_t flags,
                                             qt::DataReference& reference);
/// References to an address, and to memory that the caller keeps.
OSErr QTNewDataReferenceFromURLCFURL(std::string_view url, std::uint32_t flags, qt::DataReference& reference);
OSErr QTNewDataReferenceFromHandle(Handle data, qt::DataReference& reference);
