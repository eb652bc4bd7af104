// Blocks and components, each made in one expression.
#pragma once

#include "platform/quicktime/components.h"
#include "platform/quicktime/handles.h"
#include "platform/quicktime/movies/atom_containers.h"

#include <gtest/gtest.h>

namespace corvane::test {

/// A block with a copy of the bytes.
inline qt::MemoryHandle HandleOf(std::span<const std::byte> bytes) {
    Handle handle = nullptr;
    EXPECT_EQ(PtrToHand(bytes.data(), &handle, static_cast<Size>(bytes.size())), noErr);
    return qt::MemoryHandle(handle);
}

inline qt::MemoryHandle NewContainer() {
    QTAtomContainer container = nullptr;
    EXPECT_EQ(QTNewAtomContainer(&container), noErr);
    return qt::MemoryHandle(container);
}

inline qt::OpenComponent OpenComponentOf(OSType type, OSType subtype) {
    ComponentInstance instance = nullptr;
    EXPECT_EQ(OpenADefaultComponent(type, subtype, &instance), noErr);
    return qt::OpenComponent(instance);
}

} // namespace corvane::test
