// The desk that the host program sits at: drives, windows, pointer, and the person's answers. The host
// fills it in; the operating-system layer reads it, so that both see one machine.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fm {

/// A drive or a share, and the folder of this machine that stands behind it.
struct Drive {
    std::string root;    ///< "C:", or "\\server\share"
    std::string folder;  ///< absolute Unix path without a trailing slash, "" for "/"
    bool remote = false; ///< reports itself as a network drive; a share always does
};

struct Point {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

struct Rectangle {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
};

/// A mouse button (empty key) or a key that goes down at a moment to come.
struct InputEvent {
    std::chrono::steady_clock::time_point when;
    std::string key;
};

struct Session {
    std::vector<Drive> drives;
    std::string application_file;    ///< Unix path of the host program's executable
    std::string application_version; ///< as in an executable's version resource: "10.0v1"
    bool windows = false;            ///< real windows; else dialogs take `answers` and alerts go to stderr
    bool hidden_marks = true; ///< what a file server has marked as hidden is, beside names with a point
    bool progress = false;    ///< show the progress of long work on standard error
    std::deque<std::string> answers; ///< "ok", "cancel", "file:PATH", "folder:PATH", "set:KEY=VALUE,…"
    Rectangle document_window;       ///< front document window, screen coordinates
    Point pointer;
    std::vector<InputEvent> input;
    /// Handles the messages that wait in the queue; installed by the layer that owns the queue.
    std::function<void()> dispatch_messages;
    /// Sleeps until a message waits in the queue, or the moment has come; installed with the former.
    std::function<void(std::chrono::steady_clock::time_point until)> wait_for_messages;
};

Session& CurrentSession();

/// The absolute form of a Unix path, without "." and "..". One that is relative stays so when the current
/// folder is gone.
std::string AbsolutePath(const std::string& path);

/// "C:=/data", "\\server\share=/mnt/share" or "Z:=remote:/mnt/z". A relative folder counts from the
/// current one. nullopt when the text has another form.
std::optional<Drive> ParseDrive(std::string_view text);

/// Host path text ("/C:/home/ann/a.jpg", "//server/share/a.jpg") of an absolute Unix path through the drive
/// that covers it most closely; nullopt when none does.
std::optional<std::string> HostPath(const std::vector<Drive>& drives, std::string_view unix_path);

} // namespace fm
