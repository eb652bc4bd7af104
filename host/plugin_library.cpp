#include "host/plugin_library.h"

#include "platform/fmwrapper/memory_blocks.h"
#include "platform/text/utf.h"

#include <array>
#include <dlfcn.h>

namespace host {

PluginLibrary::~PluginLibrary() {
    Shutdown();
    if (handle_ != nullptr) ::dlclose(handle_);
}

std::string PluginLibrary::Start(const std::string& path, std::int16_t interface_version) {
    handle_ = ::dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (handle_ == nullptr) return std::string("cannot load the plug-in: ") + ::dlerror();
    entry_ = reinterpret_cast<FM_EntryPoint>(::dlsym(handle_, "FMExternCallProc"));
    if (entry_ == nullptr) return path + " is no plug-in: it has no entry point FMExternCallProc";
    fm::InstallServices(block_);
    block_.instance = handle_;
    block_.interface_version = interface_version;
    Call(kFM_CallStartUp);
    answer_ = block_.result;
    running_ = answer_ > 0;
    if (running_) return {};
    const std::string refusal = "the plug-in refuses to start: answer " + std::to_string(answer_);
    if (answer_ == -1)
        return refusal + " (it does not work with interface version " + std::to_string(interface_version) +
               ")";
    return answer_ == -2 ? refusal + " (it must not be enabled)" : refusal;
}

void PluginLibrary::Shutdown() {
    if (!running_) return;
    running_ = false;
    Call(kFM_CallShutdown);
}

void PluginLibrary::Idle() {
    if (running_) Call(kFM_CallIdle);
}

std::string PluginLibrary::String(FM_StringSelector which) {
    if (entry_ == nullptr) return {};
    std::array<char16_t, 1024> buffer = {};
    block_.parameter1 = which;
    block_.parameter3 = buffer.size();
    block_.result = reinterpret_cast<std::intptr_t>(buffer.data());
    Call(kFM_CallGetString);
    block_.parameter1 = 0;
    buffer.back() = u'\0';
    return utf::ToUtf8(buffer.data());
}

void PluginLibrary::Call(FM_CallSelector selector) {
    block_.selector = selector;
    entry_(&block_);
}

} // namespace host
