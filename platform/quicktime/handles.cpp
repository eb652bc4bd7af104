#include "platform/quicktime/handles.h"

#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace {

struct Block {
    char* bytes; ///< first, so that the block's address serves as the handle
    Size size;
};
static_assert(std::is_standard_layout_v<Block>);

/// More than any stream of a container: a larger request comes from nonsense.
constexpr Size kMaximumSize = Size{1} << 33;

OSErr g_memory_error = noErr;

Block* BlockOf(Handle handle) {
    return reinterpret_cast<Block*>(handle);
}

} // namespace

Handle NewHandle(Size size) {
    g_memory_error = size < 0 ? paramErr : memFullErr;
    if (size < 0 || size > kMaximumSize) return nullptr;
    auto* block = static_cast<Block*>(std::malloc(sizeof(Block)));
    if (block == nullptr) return nullptr;
    block->size = size;
    block->bytes = static_cast<char*>(std::malloc(size > 0 ? static_cast<std::size_t>(size) : 1));
    if (block->bytes == nullptr) {
        std::free(block);
        return nullptr;
    }
    g_memory_error = noErr;
    return &block->bytes;
}

void DisposeHandle(Handle handle) {
    g_memory_error = noErr;
    if (handle == nullptr) return;
    std::free(*handle);
    std::free(BlockOf(handle));
}

Size GetHandleSize(Handle handle) {
    g_memory_error = handle != nullptr ? noErr : paramErr;
    return handle != nullptr ? BlockOf(handle)->size : 0;
}

void SetHandleSize(Handle handle, Size size) {
    g_memory_error = paramErr;
    if (handle == nullptr || size < 0) return;
    g_memory_error = memFullErr;
    if (size > kMaximumSize) return;
    void* bytes = std::realloc(*handle, size > 0 ? static_cast<std::size_t>(size) : 1);
    if (bytes == nullptr) return;
    g_memory_error = noErr;
    *handle = static_cast<char*>(bytes);
    BlockOf(handle)->size = size;
}

OSErr PtrToHand(const void* bytes, Handle* handle, Size size) {
    *handle = NewHandle(size);
    if (*handle != nullptr && size > 0) std::memcpy(**handle, bytes, static_cast<std::size_t>(size));
    return g_memory_error;
}

OSErr MemError() {
    return g_memory_error;
}

std::span<std::byte> qt::HandleBytes(Handle handle) {
    if (handle == nullptr) return {};
    return {reinterpret_cast<std::byte*>(*handle), static_cast<std::size_t>(BlockOf(handle)->size)};
}
