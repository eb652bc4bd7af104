// The plug-in's shared library, met through its one exported function.
#pragma once

#include "platform/fmwrapper/call_block.h"

#include <cstdint>
#include <string>

namespace host {

class PluginLibrary {
public:
    PluginLibrary() = default;
    /// Shuts down a plug-in that runs, then unloads it.
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    /// Loads the library and gives it its start-up call. The text says what failed; empty on success.
    [[nodiscard]] std::string Start(const std::string& path, std::int16_t interface_version);
    void Shutdown();
    void Idle();

    /// What the plug-in answered its start-up call: its interface version, or a negative refusal.
    [[nodiscard]] std::intptr_t Answer() const { return answer_; }
    /// One of the plug-in's texts, in UTF-8.
    [[nodiscard]] std::string String(FM_StringSelector which);

private:
    void Call(FM_CallSelector selector);

    void* handle_ = nullptr;
    FM_EntryPoint entry_ = nullptr;
    FM_CallBlock block_ = {};
    std::intptr_t answer_ = 0;
    bool running_ = false;
};

} // namespace host
