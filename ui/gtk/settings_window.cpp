#include "ui/gtk/settings_window.h"

#include "ui/gtk/labels.h"
#include "ui/gtk/modal.h"
#include "ui/gtk/settings_control.h"
#include "ui/gtk/settings_preview.h"
#include "ui/gtk/signals.h"

#include <algorithm>
#include <gdk/gdkkeysyms.h>
#include <memory>
#include <utility>
#include <vector>

namespace corvane::gtk {
namespace {

using win32::SettingControl;
using win32::SettingsDialog;
using win32::SettingsPage;
using win32::SettingValues;

constexpr int kSpacing = 12;
constexpr int kRowSpacing = 8;
constexpr int kTallestPage = 300; // pixels; a page with more scrolls
constexpr int kSettingsWidth = 340;
constexpr int kLabelLength = 18; // characters in a line: page and picture fit a screen of 800 pixels

// The Return key confirms, also where a widget of its own would take it: in a box of choices, on a toggle or
// a colour. The dialog's buttons keep it.
gboolean ConfirmByReturn(GtkWidget* window, GdkEventKey* event, gpointer) {
    if (event->keyval != GDK_KEY_Return && event->keyval != GDK_KEY_KP_Enter) return FALSE;
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(window));
    if (focus == nullptr) return FALSE;
    const bool in_choices = gtk_widget_get_ancestor(focus, GTK_TYPE_COMBO_BOX) != nullptr;
    if (!in_choices && !GTK_IS_CHECK_BUTTON(focus) && !GTK_IS_COLOR_BUTTON(focus)) return FALSE;
    gtk_dialog_response(GTK_DIALOG(window), GTK_RESPONSE_ACCEPT);
    return TRUE;
}

GtkWidget* NewLabel(const std::string& text, GtkWidget* target) {
    GtkWidget* label = gtk_label_new_with_mnemonic(text.c_str());
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), target);
    gtk_label_set_xalign(GTK_LABEL(label), 1);
    gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_RIGHT);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_max_width_chars(GTK_LABEL(label), kLabelLength);
    return label;
}

class SettingsWindow {
public:
    explicit SettingsWindow(const SettingsDialog& dialog);

    std::optional<SettingValues> Run();

private:
    struct Setting {
        std::string key;
        ControlWidgets widgets;
    };

    void AddButtons();
    GtkWidget* NewContent();
    GtkWidget* NewPageChooser();
    GtkWidget* NewPages();
    GtkWidget* NewPage(const SettingsPage& page, std::vector<Setting>& settings);
    void AddControl(GtkWidget* grid, int row, const SettingControl& control, std::vector<Setting>& settings,
                    Mnemonics& mnemonics);
    void KeepHeight();
    void ShowPage();
    void Changed();
    bool Closes(int response);
    [[nodiscard]] SettingValues Values() const;

    const SettingsDialog& dialog_;
    std::size_t page_;
    Mnemonics mnemonics_;                        // of what is shown whatever the page
    std::vector<std::vector<Setting>> settings_; // by page
    GtkWidget* page_chooser_ = nullptr;
    GtkWidget* stack_ = nullptr;
    GtkWidget* scroller_ = nullptr;
    std::unique_ptr<SettingsPreview> preview_;
    Window window_; // the last member: goes first, and its signals with it
};

SettingsWindow::SettingsWindow(const SettingsDialog& dialog)
    : dialog_(dialog),
      page_(dialog.page < dialog.pages.size() ? dialog.page : 0),
      window_(NewDialog(dialog.title)) {
    if (dialog_.preview)
        preview_ = std::make_unique<SettingsPreview>([this] { return dialog_.preview(Values()); });
    AddButtons();
    gtk_container_add(GTK_CONTAINER(gtk_dialog_get_content_area(GTK_DIALOG(window_.get()))), NewContent());
    g_signal_connect(window_.get(), "key-press-event", G_CALLBACK(ConfirmByReturn), nullptr);
}

void SettingsWindow::AddButtons() {
    GtkDialog* dialog = GTK_DIALOG(window_.get());
    const std::string confirm = mnemonics_.Add("OK");
    const std::string cancel = mnemonics_.Add("Cancel");
    if (!dialog_.action_label.empty()) {
        GtkWidget* action =
            gtk_dialog_add_button(dialog, mnemonics_.Add(dialog_.action_label).c_str(), GTK_RESPONSE_APPLY);
        GtkWidget* area = gtk_widget_get_parent(action);
        gtk_button_box_set_child_secondary(GTK_BUTTON_BOX(area), action, TRUE);
    }
    gtk_dialog_add_button(dialog, cancel.c_str(), GTK_RESPONSE_CANCEL);
    gtk_dialog_add_button(dialog, confirm.c_str(), GTK_RESPONSE_ACCEPT);
    gtk_dialog_set_default_response(dialog, GTK_RESPONSE_ACCEPT);
}

// The picture on the left, the settings beside it.
GtkWidget* SettingsWindow::NewContent() {
    GtkWidget* settings = gtk_box_new(GTK_ORIENTATION_VERTICAL, kSpacing);
    gtk_widget_set_size_request(settings, kSettingsWidth, -1);
    if (dialog_.pages.size() > 1) gtk_container_add(GTK_CONTAINER(settings), NewPageChooser());
    gtk_container_add(GTK_CONTAINER(settings), NewPages());
    GtkWidget* content = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kSpacing);
    if (preview_) gtk_container_add(GTK_CONTAINER(content), preview_->Frame());
    gtk_box_pack_start(GTK_BOX(content), settings, TRUE, TRUE, 0);
    return content;
}

GtkWidget* SettingsWindow::NewPageChooser() {
    std::vector<win32::SettingChoice> choices;
    for (const SettingsPage& page : dialog_.pages) choices.push_back({page.value, page.label});
    page_chooser_ = NewChoices(choices, dialog_.pages[page_].value, [this] { ShowPage(); });
    GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kSpacing);
    gtk_container_add(GTK_CONTAINER(row), NewLabel(mnemonics_.Add(dialog_.page_label), page_chooser_));
    gtk_box_pack_start(GTK_BOX(row), page_chooser_, TRUE, TRUE, 0);
    return row;
}

GtkWidget* SettingsWindow::NewPages() {
    stack_ = gtk_stack_new();
    settings_.resize(dialog_.pages.size());
    for (std::size_t i = 0; i < dialog_.pages.size(); ++i)
        gtk_stack_add_named(GTK_STACK(stack_), NewPage(dialog_.pages[i], settings_[i]),
                            std::to_string(i).c_str());
    gtk_stack_set_vhomogeneous(GTK_STACK(stack_), FALSE);
    scroller_ = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller_), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_propagate_natural_height(GTK_SCROLLED_WINDOW(scroller_), TRUE);
    gtk_scrolled_window_set_max_content_height(GTK_SCROLLED_WINDOW(scroller_), kTallestPage);
    gtk_scrolled_window_set_overlay_scrolling(GTK_SCROLLED_WINDOW(scroller_), FALSE);
    gtk_container_add(GTK_CONTAINER(scroller_), stack_);
    return scroller_;
}

// The window does not change its size with the page.
void SettingsWindow::KeepHeight() {
    int tallest = 0;
    gtk_container_forall(
        GTK_CONTAINER(stack_),
        [](GtkWidget* page, gpointer most) {
            int height = 0;
            gtk_widget_get_preferred_height(page, nullptr, &height);
            *static_cast<int*>(most) = std::max(*static_cast<int*>(most), height);
        },
        &tallest);
    gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scroller_),
                                               std::min(tallest, kTallestPage));
}

GtkWidget* SettingsWindow::NewPage(const SettingsPage& page, std::vector<Setting>& settings) {
    if (page.controls.empty()) return gtk_label_new("There is nothing to set here.");
    GtkWidget* grid = gtk_grid_new();
    gtk_grid_set_row_spacing(GTK_GRID(grid), kRowSpacing);
    gtk_grid_set_column_spacing(GTK_GRID(grid), kSpacing);
    if (dialog_.pages.size() > 1) gtk_widget_set_margin_end(grid, kSpacing); // beside a bar for scrolling
    Mnemonics mnemonics = mnemonics_; // pages are not shown together: each may use the letters that are left
    for (std::size_t i = 0; i < page.controls.size(); ++i)
        AddControl(grid, static_cast<int>(i), page.controls[i], settings, mnemonics);
    return grid;
}

void SettingsWindow::AddControl(GtkWidget* grid, int row, const SettingControl& control,
                                std::vector<Setting>& settings, Mnemonics& mnemonics) {
    const std::string label = mnemonics.Add(control.label);
    ControlWidgets widgets = NewControl(control, label, [this] { Changed(); });
    gtk_widget_set_hexpand(widgets.row, TRUE);
    gtk_widget_set_valign(widgets.row, GTK_ALIGN_CENTER);
    if (!CarriesLabel(control))
        gtk_grid_attach(GTK_GRID(grid), NewLabel(label, widgets.target), 0, row, 1, 1);
    gtk_grid_attach(GTK_GRID(grid), widgets.row, 1, row, 1, 1);
    settings.push_back({control.key, std::move(widgets)});
}

void SettingsWindow::ShowPage() {
    page_ = static_cast<std::size_t>(gtk_combo_box_get_active(GTK_COMBO_BOX(page_chooser_)));
    gtk_stack_set_visible_child_name(GTK_STACK(stack_), std::to_string(page_).c_str());
    Changed();
}

void SettingsWindow::Changed() {
    if (preview_) preview_->Renew();
}

SettingValues SettingsWindow::Values() const {
    SettingValues values;
    if (page_ >= settings_.size()) return values;
    if (page_chooser_ != nullptr) values.emplace_back(dialog_.page_key, dialog_.pages[page_].value);
    for (const Setting& setting : settings_[page_]) values.emplace_back(setting.key, setting.widgets.value());
    return values;
}

bool SettingsWindow::Closes(int response) {
    if (page_ < settings_.size())
        for (const Setting& setting : settings_[page_])
            if (setting.widgets.commit) setting.widgets.commit();
    if (response != GTK_RESPONSE_APPLY) return true;
    dialog_.action(Values());
    return false;
}

std::optional<SettingValues> SettingsWindow::Run() {
    // Only pages that are shown have a height, and can be chosen.
    gtk_widget_show_all(gtk_dialog_get_content_area(GTK_DIALOG(window_.get())));
    KeepHeight();
    gtk_stack_set_visible_child_name(GTK_STACK(stack_), std::to_string(page_).c_str());
    Changed();
    const int response = RunModal(window_.get(), [this](int pressed) { return Closes(pressed); });
    if (response != GTK_RESPONSE_ACCEPT) return std::nullopt;
    return Values();
}

} // namespace

std::optional<SettingValues> AskForSettings(const SettingsDialog& dialog) {
    return SettingsWindow(dialog).Run();
}

} // namespace corvane::gtk
