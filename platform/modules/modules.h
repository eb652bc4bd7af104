// Parts of the program and of the plug-in that are loaded when first needed, for their libraries take long to
// load.
#pragma once

#include <atomic>
#include <string>

namespace modules {

struct Module {
    const void* table = nullptr; ///< what the module's corvane_module() answered; null: not loaded
    std::string reason;          ///< why it is not loaded, for people
};

/// Loads corvane-NAME.so from the folder of the library or program that this code is part of, once per
/// process; a failed attempt is made again by the next call. Any thread may call. A module exports
/// `extern "C" const void* corvane_module()`, which answers its table of operations.
Module Load(const std::string& name);

/// The table of a module for which nobody has to hear why it is not there; null: not loaded.
template <class T>
const T* Table(const std::string& name) {
    return static_cast<const T*>(Load(name).table);
}

/// A library that is nothing but its module's table of functions. They may be called through -> once Load()
/// has answered true. Any thread may use it.
template <class Functions>
class Library {
public:
    constexpr explicit Library(const char* name) : name_(name) {}

    /// False when the module is not there.
    bool Load() {
        if (functions_ == nullptr) functions_ = Table<Functions>(name_);
        return functions_ != nullptr;
    }
    const Functions* operator->() const { return functions_; }

private:
    const char* name_;
    std::atomic<const Functions*> functions_ = nullptr;
};

} // namespace modules
