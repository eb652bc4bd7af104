#include "ui/gtk/labels.h"

namespace corvane::gtk {
namespace {

bool IsLetterOrDigit(char character) {
    return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
}

char Lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

} // namespace

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
