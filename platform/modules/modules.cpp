#include "platform/modules/modules.h"

#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <link.h>
#include <map>
#include <mutex>

namespace modules {
namespace {

// Folder of the library or program that this code was linked into, with a slash at its end.
std::string OwnFolder() {
    Dl_info where{};
    link_map* map = nullptr;
    dladdr1(reinterpret_cast<const void*>(&OwnFolder), &where, reinterpret_cast<void**>(&map),
            RTLD_DL_LINKMAP);
    // The program itself has no name in the map, and dladdr only knows how it was called.
    const char* file = map != nullptr && map->l_name[0] != '\0' ? map->l_name : "/proc/self/exe";
    char resolved[PATH_MAX];
    const std::string path = realpath(file, resolved) != nullptr ? resolved : file;
    return path.substr(0, path.rfind('/') + 1);
}

std::string DynamicLinkerError() {
    const char* error = dlerror();
    return error == nullptr ? "unknown error" : error;
}

} // namespace

Module Load(const std::string& name) {
    static std::mutex mutex;
    static std::map<std::string, const void*> loaded;
    const std::lock_guard lock(mutex);
    if (const auto found = loaded.find(name); found != loaded.end()) return {found->second, {}};

    const std::string file = OwnFolder() + "corvane-" + name + ".so";
    void* library = dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (library == nullptr) return {nullptr, "could not load the module: " + DynamicLinkerError()};
    const auto entry = reinterpret_cast<const void* (*)()>(dlsym(library, "corvane_module"));
    const void* table = entry == nullptr ? nullptr : entry();
    if (table == nullptr) {
        dlclose(library);
        return {nullptr, file + (entry == nullptr ? " is no module" : " could not start")};
    }
    loaded.emplace(name, table);
    return {table, {}};
}

} // namespace modules
