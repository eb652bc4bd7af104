#include "ui/gtk/settings_control.h"

#include "ui/gtk/signals.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace corvane::gtk {
namespace {

using win32::SettingControl;

constexpr int kSpacing = 6;
constexpr int kSliderWidth = 100;
constexpr double kMostSliderSteps = 5000; // a slider can't be set to one of more
constexpr int kMostDigits = 6;

// Numbers are read and written in the form of the answer, whatever the host's locale.
double Number(std::string_view text) {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return std::isfinite(number) ? number : 0;
}

int Digits(double step) {
    int digits = 0;
    for (; digits < kMostDigits && std::abs(step - std::round(step)) > 1e-9; ++digits) step *= 10;
    return digits;
}

std::string NumberText(double number, int digits) {
    std::array<char, 64> buffer; // a range is far from 1e50
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::fixed, digits);
    if (end.ec != std::errc()) return "0";
    std::string text(buffer.data(), end.ptr);
    if (digits > 0) text.erase(std::max(text.find_last_not_of('0'), text.find('.') - 1) + 1);
    if (text.back() == '.') text.pop_back();
    return text == "-0" ? "0" : text;
}

void Append(GtkWidget* box, GtkWidget* child, bool expands) {
    gtk_box_pack_start(GTK_BOX(box), child, expands ? TRUE : FALSE, TRUE, 0);
}

ControlWidgets NewNumber(const SettingControl& control, const std::function<void()>& changed) {
    const double step = control.step > 0 ? control.step : 1;
    const double maximum = std::max(control.minimum, control.maximum);
    const int digits = Digits(step);
    GtkAdjustment* number =
        gtk_adjustment_new(Number(control.value), control.minimum, maximum, step, step * 10, 0);
    GtkWidget* spin = gtk_spin_button_new(number, step, static_cast<guint>(digits));
    gtk_entry_set_activates_default(GTK_ENTRY(spin), TRUE);
    gtk_spin_button_set_numeric(GTK_SPIN_BUTTON(spin), TRUE);
    GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kSpacing);
    if ((maximum - control.minimum) / step <= kMostSliderSteps) {
        GtkWidget* slider = gtk_scale_new(GTK_ORIENTATION_HORIZONTAL, number);
        gtk_scale_set_draw_value(GTK_SCALE(slider), FALSE);
        gtk_scale_set_digits(GTK_SCALE(slider), digits);
        gtk_widget_set_size_request(slider, kSliderWidth, -1);
        gtk_widget_set_can_focus(slider, FALSE); // one stop for the Tab key is enough: the entry
        Append(row, slider, true);
    }
    Append(row, spin, false);
    if (!control.unit.empty()) Append(row, gtk_label_new(control.unit.c_str()), false);
    Connect(number, "value-changed", changed);
    return {row, spin, [number, digits] { return NumberText(gtk_adjustment_get_value(number), digits); },
            [spin] { gtk_spin_button_update(GTK_SPIN_BUTTON(spin)); }};
}

ControlWidgets NewToggle(const SettingControl& control, const std::string& label,
                         const std::function<void()>& changed) {
    GtkWidget* check = gtk_check_button_new_with_mnemonic(label.c_str());
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(check), control.value == "1" ? TRUE : FALSE);
    Connect(check, "toggled", changed);
    return {check,
            check,
            [check]() -> std::string {
                return gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(check)) != FALSE ? "1" : "0";
            },
            {}};
}

std::string ColourText(const GdkRGBA& colour) {
    const auto byte = [](double part) { return static_cast<unsigned>(std::lround(part * 255)) & 0xFFU; };
    std::array<char, 8> text;
    std::snprintf(text.data(), text.size(), "#%02x%02x%02x", byte(colour.red), byte(colour.green),
                  byte(colour.blue));
    return text.data();
}

ControlWidgets NewColour(const SettingControl& control, const std::function<void()>& changed) {
    GdkRGBA colour = {0, 0, 0, 1};
    gdk_rgba_parse(&colour, control.value.c_str());
    GtkWidget* button = gtk_color_button_new_with_rgba(&colour);
    gtk_color_button_set_title(GTK_COLOR_BUTTON(button), control.label.c_str());
    gtk_widget_set_halign(button, GTK_ALIGN_START);
    Connect(button, "color-set", changed);
    return {button,
            button,
            [button] {
                GdkRGBA chosen;
                gtk_color_chooser_get_rgba(GTK_COLOR_CHOOSER(button), &chosen);
                return ColourText(chosen);
            },
            {}};
}

ControlWidgets NewText(const SettingControl& control, const std::function<void()>& changed) {
    GtkWidget* entry = gtk_entry_new();
    gtk_entry_set_text(GTK_ENTRY(entry), control.value.c_str());
    gtk_entry_set_activates_default(GTK_ENTRY(entry), TRUE);
    Connect(entry, "changed", changed);
    return {entry, entry, [entry] { return std::string(gtk_entry_get_text(GTK_ENTRY(entry))); }, {}};
}

ControlWidgets NewChoice(const SettingControl& control, const std::function<void()>& changed) {
    GtkWidget* box = NewChoices(control.choices, control.value, changed);
    return {box,
            box,
            [box]() -> std::string {
                const char* id = gtk_combo_box_get_active_id(GTK_COMBO_BOX(box));
                return id != nullptr ? id : "";
            },
            {}};
}

} // namespace

bool CarriesLabel(const SettingControl& control) {
    return control.kind == SettingControl::Kind::kToggle;
}

GtkWidget* NewChoices(const std::vector<win32::SettingChoice>& choices, const std::string& value,
                      const std::function<void()>& changed) {
    GtkWidget* box = gtk_combo_box_text_new();
    for (const auto& choice : choices)
        gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(box), choice.value.c_str(), choice.label.c_str());
    if (gtk_combo_box_set_active_id(GTK_COMBO_BOX(box), value.c_str()) == FALSE)
        gtk_combo_box_set_active(GTK_COMBO_BOX(box), 0);
    Connect(box, "changed", changed);
    return box;
}

ControlWidgets NewControl(const SettingControl& control, const std::string& label,
                          const std::function<void()>& changed) {
    switch (control.kind) {
    case SettingControl::Kind::kNumber: return NewNumber(control, changed);
    case SettingControl::Kind::kChoice: return NewChoice(control, changed);
    case SettingControl::Kind::kToggle: return NewToggle(control, label, changed);
    case SettingControl::Kind::kColour: return NewColour(control, changed);
    default: return NewText(control, changed);
    }
}

} // namespace corvane::gtk
