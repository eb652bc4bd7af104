// The block through which the host and a plug-in talk at the plug-in's single exported entry point.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstddef>
#include <cstdint>

/// A host memory block: the first word that the handle points at is the address of the bytes. The address
/// is good while the block is neither resized nor disposed of.
using FM_MemoryHandle = char**;

enum FM_CallSelector : std::uint8_t {
    kFM_CallStartUp = 0,
    kFM_CallIdle = 1,
    kFM_CallShutdown = 4,
    kFM_CallPreferences = 5,
    kFM_CallGetString = 7
};

/// Strings of kFM_CallGetString, in `parameter1`.
enum FM_StringSelector : std::uint8_t {
    kFM_StringName = 128,
    kFM_StringDescription = 129,
    kFM_StringOptions = 131
};

#pragma pack(push, 1)

/// The host's own layout, with 32-bit pointers. Kept to fix the offsets; nothing is linked against it here.
struct FM_CallBlock32 {
    std::int16_t interface_version;
    std::uint8_t reserved1[7];
    std::uint8_t selector;
    std::uint8_t reserved2;
    std::uint8_t parameter1;
    std::uint8_t reserved3[4];
    std::uint32_t parameter3;
    std::uint32_t instance;
    std::uint32_t result;
    std::uint32_t reserved4;
    std::uint32_t new_memory_block;
    std::uint32_t resize_memory_block;
    std::uint32_t memory_block_size;
    std::uint32_t dispose_memory_block;
    std::uint32_t reserved5;
    std::uint32_t lock_memory_block;
    std::uint32_t reserved6[3];
    std::uint32_t last_memory_error;
    std::uint32_t reserved7;
    std::uint32_t current_environment;
};

/// The layout for 64-bit pointers: integer fields where they were, then the pointer-wide fields in the
/// same order, each at its natural alignment.
struct FM_CallBlock {
    std::int16_t interface_version; ///< start-up: the host's plug-in interface version
    std::uint8_t reserved1[7];
    std::uint8_t selector; ///< an FM_CallSelector
    std::uint8_t reserved2;
    std::uint8_t parameter1; ///< idle: the idle level; get string: an FM_StringSelector
    std::uint8_t reserved3[4];
    std::uint32_t parameter3; ///< get string: the buffer's capacity in UTF-16 code units
    std::uint32_t reserved4;
    void* instance;       ///< the plug-in's module handle
    std::intptr_t result; ///< start-up: the answer; get string: address of the host's UTF-16 buffer
    void* reserved5;

    // Memory blocks; sizes in bytes. The host keeps the outcome of the latest call for last_memory_error.
    FM_MemoryHandle (*new_memory_block)(std::int32_t size);
    void (*resize_memory_block)(FM_MemoryHandle block, std::int32_t size);
    std::int32_t (*memory_block_size)(FM_MemoryHandle block);
    void (*dispose_memory_block)(FM_MemoryHandle block);
    void* reserved6;
    void (*lock_memory_block)(FM_MemoryHandle block);
    void* reserved7[3];
    std::int16_t (*last_memory_error)();
    void* reserved8;
    void (*current_environment)(FM_ExprEnv* environment); ///< fills it with the running calculation's
};

#pragma pack(pop)

static_assert(offsetof(FM_CallBlock32, interface_version) == 0);
static_assert(offsetof(FM_CallBlock32, selector) == 9);
static_assert(offsetof(FM_CallBlock32, parameter1) == 11);
static_assert(offsetof(FM_CallBlock32, parameter3) == 16);
static_assert(offsetof(FM_CallBlock32, instance) == 20);
static_assert(offsetof(FM_CallBlock32, result) == 24);
static_assert(offsetof(FM_CallBlock32, new_memory_block) == 32);
static_assert(offsetof(FM_CallBlock32, resize_memory_block) == 36);
static_assert(offsetof(FM_CallBlock32, memory_block_size) == 40);
static_assert(offsetof(FM_CallBlock32, dispose_memory_block) == 44);
static_assert(offsetof(FM_CallBlock32, lock_memory_block) == 52);
static_assert(offsetof(FM_CallBlock32, last_memory_error) == 68);
static_assert(offsetof(FM_CallBlock32, current_environment) == 76);

static_assert(sizeof(void*) == 8, "the call block is laid out for 64-bit pointers");
static_assert(offsetof(FM_CallBlock, interface_version) == 0);
static_assert(offsetof(FM_CallBlock, selector) == 9);
static_assert(offsetof(FM_CallBlock, parameter1) == 11);
static_assert(offsetof(FM_CallBlock, parameter3) == 16);
static_assert(offsetof(FM_CallBlock, instance) == 24);
static_assert(offsetof(FM_CallBlock, result) == 32);
static_assert(offsetof(FM_CallBlock, new_memory_block) == 48);
static_assert(offsetof(FM_CallBlock, lock_memory_block) == 88);
static_assert(offsetof(FM_CallBlock, last_memory_error) == 120);
static_assert(offsetof(FM_CallBlock, current_environment) == 136);
static_assert(sizeof(FM_CallBlock) == 144);

/// Type of the plug-in's entry point, the library's one export.
using FM_EntryPoint = void (*)(FM_CallBlock* block);
