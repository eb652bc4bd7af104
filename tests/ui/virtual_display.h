// A display without a screen, and a person who types there.
#pragma once

#include "platform/fmwrapper/session.h"

#include <memory>
#include <string>
#include <sys/types.h>

namespace corvane::test {

/// An X server that lives as long as this object. The process's DISPLAY names it.
class VirtualDisplay {
public:
    VirtualDisplay();
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    [[nodiscard]] pid_t Process() const { return process_; }

private:
    pid_t process_ = 0;
};

/// Waits beside the test until the window with this title stands, gives it the keyboard, and does what the
/// shell commands say; $WINDOW is its number for xdotool.
class Person {
public:
    Person(const std::string& title, const std::string& commands);
    /// Waits for the commands to end. A window that does not come within a minute, and a command that fails,
    /// are failures of the test.
    ~Person();
    Person(const Person&) = delete;
    Person& operator=(const Person&) = delete;

private:
    std::string title_;
    pid_t process_ = 0;
};

/// Another program's window, as window managers leave it: with a frame around it, and called the active one
/// until the pointer ends. `inside` is the window without its frame, whose borders are as wide as the sides
/// of `borders` say.
std::shared_ptr<void> ShowManagedWindow(const fm::Rectangle& inside, const fm::Rectangle& borders);

} // namespace corvane::test
