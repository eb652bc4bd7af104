// One sitting at the database host: a plug-in that is loaded and started, a current database, and the
// calculations that are evaluated one after the other. One at a time in a process, since the plug-in and
// the desk (fm::CurrentSession) are the process's own.
#pragma once

#include "host/engine/engine.h"
#include "host/plugin_library.h"
#include "platform/fmwrapper/session.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct SessionOptions {
    std::string plugin;            ///< path of the plug-in library; empty: libcorvane.so beside the program
    std::string database;          ///< host path text or Unix path; empty: Untitled.fp7 in the current folder
    std::vector<fm::Drive> drives; ///< empty: "C:" for "/"
    std::int16_t interface_version = 51;
    std::string host_version = "10.0v1";
    bool windows = false;             ///< real windows; else dialogs take their answers from `answers`
    bool hidden_marks = true;         ///< file servers' marks of hidden files count
    bool progress = false;            ///< show the progress of long work on standard error
    std::vector<std::string> answers; ///< "ok", "cancel", "file:PATH", "folder:PATH", "set:KEY=VALUE,…"
};

class Session {
public:
    explicit Session(SessionOptions options);
    /// Shuts the plug-in down and unloads it.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Lays the desk, loads the plug-in and starts it. The text says what failed; empty on success.
    [[nodiscard]] std::string Start();

    /// Evaluates one calculation (UTF-8). Session variables live on to the next.
    Outcome Evaluate(std::string_view calculation) { return engine_.Evaluate(calculation); }

    [[nodiscard]] Engine& GetEngine() { return engine_; }
    [[nodiscard]] PluginLibrary& Plugin() { return plugin_; }

private:
    SessionOptions options_;
    Engine engine_;
    PluginLibrary plugin_;
};

} // namespace host
