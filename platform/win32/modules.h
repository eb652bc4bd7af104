// Parts of the platform that are loaded when first needed, for their libraries are heavy.
#pragma once

#include <string>

namespace win32 {

struct Module {
    const void* table = nullptr; ///< what the module's corvane_module() answered; null: not loaded
    std::string reason;          ///< why it is not loaded, for people
};

/// Loads corvane-NAME.so from the folder of the library or program that this code is part of, once per
/// process; a failed attempt is made again by the next call. Any thread may call. A module exports
/// `extern "C" const void* corvane_module()`, which answers its table of operations.
Module LoadModule(const std::string& name);

/// The table of a module for which nobody has to hear why it is not there; null: not loaded.
template <class Table>
const Table* ModuleTable(const std::string& name) {
    return static_cast<const Table*>(LoadModule(name).table);
}

} // namespace win32
