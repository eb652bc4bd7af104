#include "platform/fmwrapper/memory_blocks.h"

#include "platform/fmwrapper/fault.h"
#include "platform/fmwrapper/host_engine.h"
#include "platform/fmwrapper/objects.h"

#include <type_traits>
#include <vector>

namespace fm {
namespace {

// The handle is the address of `bytes`, the first member, through which a block's owner finds the bytes.
struct MemoryBlock {
    char* bytes = nullptr;
    std::vector<char> storage;
    Counted counted;
};

std::int16_t g_last_error = kFM_ErrorNone;

FM_MemoryHandle HandleOf(MemoryBlock* block) {
    return &block->bytes;
}

MemoryBlock* BlockOf(FM_MemoryHandle handle) {
    static_assert(std::is_standard_layout_v<MemoryBlock>, "the handle and the block share one address");
    return reinterpret_cast<MemoryBlock*>(handle);
}

bool Refuses(const char* service) {
    FM_Status status = kFM_StatusOk;
    const bool refused = Fails(service, &status);
    g_last_error = refused ? kFM_ErrorOutOfMemory : kFM_ErrorNone;
    return refused;
}

bool Resize(MemoryBlock& block, std::int32_t size) {
    try {
        block.storage.resize(static_cast<std::size_t>(size < 0 ? 0 : size));
        block.bytes = block.storage.data();
        return true;
    } catch (const std::bad_alloc&) {
        g_last_error = kFM_ErrorOutOfMemory;
        return false;
    }
}

FM_MemoryHandle NewMemoryBlock(std::int32_t size) {
    if (Refuses("NewMemoryBlock")) return nullptr;
    auto* block = new (std::nothrow) MemoryBlock;
    if (block == nullptr || !Resize(*block, size)) {
        delete block;
        g_last_error = kFM_ErrorOutOfMemory;
        return nullptr;
    }
    return HandleOf(block);
}

void ResizeMemoryBlock(FM_MemoryHandle handle, std::int32_t size) {
    if (Refuses("ResizeMemoryBlock")) return;
    Resize(*BlockOf(handle), size);
}

std::int32_t MemoryBlockSize(FM_MemoryHandle handle) {
    return static_cast<std::int32_t>(BlockOf(handle)->storage.size());
}

void DisposeMemoryBlock(FM_MemoryHandle handle) {
    g_last_error = kFM_ErrorNone;
    delete BlockOf(handle);
}

void LockMemoryBlock(FM_MemoryHandle handle) {
    MemoryBlock& block = *BlockOf(handle);
    block.bytes = block.storage.data();
}

std::int16_t LastMemoryError() {
    return g_last_error;
}

void CurrentEnvironment(FM_ExprEnv* environment) {
    environment->engine = CurrentHostEngine();
}

} // namespace

void InstallServices(FM_CallBlock& block) {
    block.new_memory_block = NewMemoryBlock;
    block.resize_memory_block = ResizeMemoryBlock;
    block.memory_block_size = MemoryBlockSize;
    block.dispose_memory_block = DisposeMemoryBlock;
    block.lock_memory_block = LockMemoryBlock;
    block.last_memory_error = LastMemoryError;
    block.current_environment = CurrentEnvironment;
}

} // namespace fm
