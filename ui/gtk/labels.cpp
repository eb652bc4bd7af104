#include "ui/gtk/labels.h"

#include <glib.h>
#include <memory>

namespace corvane::gtk {
namespace {

bool IsLetterOrDigit(char character) {
    return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
}

char Lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

struct Free {
    void operator()(char* text) const { g_free(text); }
};

} // namespace

std::string Shortened(const std::string& text, long most) {
    const std::unique_ptr<char, Free> valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
    if (g_utf8_strlen(valid.get(), -1) <= most) return valid.get();
    return std::string(valid.get(), g_utf8_offset_to_pointer(valid.get(), most - 3)) + "...";
}

std::string Mnemonics::Add(std::string_view label) {
    std::string marked;
    bool found = false;
    for (const char character : label) {
        const char key = Lower(character);
        if (!found && IsLetterOrDigit(key) && taken_.find(key) == std::string::npos) {
            found = true;
            taken_ += key;
            marked += '_';
        }
        marked += character;
        if (character == '_') marked += '_';
    }
    return marked;
}

} // namespace corvane::gtk
