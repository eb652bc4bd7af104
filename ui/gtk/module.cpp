// The module corvane-windows.so: the only part that is linked with the window library. It stays in the
// process once loaded, as the library itself can't be unloaded.
#include "ui/gtk/alert.h"
#include "ui/gtk/desk.h"
#include "ui/gtk/display.h"
#include "ui/gtk/path_chooser.h"
#include "ui/gtk/settings_window.h"

namespace {

// Runs an operation, and tells of a display that was lost in it when all windows are gone.
template <auto Operation, class... Parameters>
auto OnDisplay(Parameters... parameters) {
    auto answer = Operation(parameters...);
    corvane::gtk::TellDisplayLost();
    return answer;
}

constexpr win32::WindowsModule kModule = {
    corvane::gtk::OpenDisplay,
    OnDisplay<corvane::gtk::ShowAlert, const win32::AlertWindow&>,
    OnDisplay<corvane::gtk::ChoosePath, const win32::PathWindow&>,
    OnDisplay<corvane::gtk::AskForSettings, const win32::SettingsDialog&>,
    OnDisplay<corvane::gtk::ReadPointerAndWindow>,
    OnDisplay<corvane::gtk::IsDown, int>,
};

} // namespace

extern "C" __attribute__((visibility("default"))) const void* corvane_module() {
    return &kModule;
}
