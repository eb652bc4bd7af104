// A window as window managers leave it: with a frame around it, and called the active one.
#pragma once

#include "platform/fmwrapper/session.h"

#include <memory>

namespace corvane::test {

/// Another program's window, in front of all until this object ends.
class ManagedWindow {
public:
    /// `inside` is the window without its frame, whose borders are as wide as the sides of `borders` say.
    ManagedWindow(const fm::Rectangle& inside, const fm::Rectangle& borders);
    ~ManagedWindow();
    ManagedWindow(const ManagedWindow&) = delete;
    ManagedWindow& operator=(const ManagedWindow&) = delete;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace corvane::test
