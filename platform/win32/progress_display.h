// The display of how far long work has come: one line on standard error, where the session asks for it.
#pragma once

#include <chrono>
#include <string>

namespace win32 {

/// Shows nothing during the first second, so that short work stays silent; the line goes with the object.
class ProgressDisplay {
public:
    /// `label` says what is being done: "Exporting sound".
    explicit ProgressDisplay(std::string label);
    ProgressDisplay(const ProgressDisplay&) = delete;
    ProgressDisplay& operator=(const ProgressDisplay&) = delete;
    ~ProgressDisplay();

    /// From 0 to 1. Cheap enough to be called for every block of the work.
    void Show(double done);

private:
    std::string label_;
    std::chrono::steady_clock::time_point started_;
    int shown_ = -1; ///< per cent on the line; -1: there is no line
};

} // namespace win32
