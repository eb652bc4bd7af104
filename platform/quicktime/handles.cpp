#include "platform/quicktime/handles.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

namespace {

struct Block {
    char* bytes; ///< first, so that the block's address serves as the handle
    Size size;
    std::vector<std::byte> moved; ///< owns the bytes when it holds any; else they come from malloc
};
static_assert(std::is_standard_layout_v<Block>);

/// More than any stream of a container: a larger request comes from nonsense.
constexpr Size kMaximumSize = Size{1} << 33;

OSErr g_memory_error = noErr;

Block* BlockOf(Handle handle) {
    return reinterpret_cast<Block*>(handle);
}

char* AllocateBytes(Size size) {
    return static_cast<char*>(std::malloc(size > 0 ? static_cast<std::size_t>(size) : 1));
}

void FreeBytes(Block& block) {
    if (block.moved.empty()) std::free(block.bytes);
    block.moved = {};
}

} // namespace

Handle NewHandle(Size size) {
    g_memory_error = size < 0 ? paramErr : memFullErr;
    if (size < 0 || size > kMaximumSize) return nullptr;
    auto block = std::unique_ptr<Block>(new (std::nothrow) Block{});
    if (block == nullptr) return nullptr;
    block->size = size;
    block->bytes = AllocateBytes(size);
    if (block->bytes == nullptr) return nullptr;
    g_memory_error = noErr;
    return &block.release()->bytes;
}

void DisposeHandle(Handle handle) {
    g_memory_error = noErr;
    if (handle == nullptr) return;
    const std::unique_ptr<Block> block(BlockOf(handle));
    FreeBytes(*block);
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
    Block& block = *BlockOf(handle);
    char* bytes = nullptr;
    if (block.moved.empty()) {
        bytes = static_cast<char*>(std::realloc(block.bytes, size > 0 ? static_cast<std::size_t>(size) : 1));
        if (bytes == nullptr) return;
    } else {
        bytes = AllocateBytes(size);
        if (bytes == nullptr) return;
        std::memcpy(bytes, block.bytes, static_cast<std::size_t>(std::min(size, block.size)));
        block.moved = {};
    }
    g_memory_error = noErr;
    block.bytes = bytes;
    block.size = size;
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

OSErr qt::MoveToHandle(std::vector<std::byte> bytes, Handle handle) {
    if (handle == nullptr) return paramErr;
    if (bytes.empty()) {
        SetHandleSize(handle, 0);
        return MemError();
    }
    Block& block = *BlockOf(handle);
    FreeBytes(block);
    block.moved = std::move(bytes);
    block.bytes = reinterpret_cast<char*>(block.moved.data());
    block.size = static_cast<Size>(block.moved.size());
    return noErr;
}
