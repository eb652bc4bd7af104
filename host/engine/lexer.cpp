#include "host/engine/lexer.h"

#include "platform/text/utf.h"

#include <algorithm>
#include <array>
#include <utility>

namespace host {
namespace {

constexpr std::string_view kPilcrow = "¶";
constexpr std::string_view kNoBreakSpace = "\u00A0";

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// Bytes of a name: every character outside ASCII counts as a letter.
bool IsNameStart(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           character == '_' || static_cast<unsigned char>(character) >= 0x80;
}

struct SymbolSpelling {
    std::string_view written;
    std::string_view ascii;
};

// A spelling stands before those that it begins with.
constexpr auto kSymbols = std::to_array<SymbolSpelling>({
    {"≠", "<>"}, {"≤", "<="}, {"≥", ">="}, {"<>", "<>"}, {"<=", "<="}, {">=", ">="}, {"<", "<"},
    {">", ">"},  {"=", "="},  {"&", "&"},  {"+", "+"},   {"-", "-"},   {"*", "*"},   {"/", "/"},
    {"(", "("},  {")", ")"},  {"[", "["},  {"]", "]"},   {";", ";"},
});

const SymbolSpelling* SymbolAt(std::string_view rest) {
    for (const SymbolSpelling& symbol : kSymbols)
        if (symbol.written.front() == rest.front() && rest.starts_with(symbol.written)) return &symbol;
    return nullptr;
}

// A name ends where a symbol outside ASCII, a pilcrow or a no-break space begins.
bool EndsName(std::string_view rest) {
    if (static_cast<unsigned char>(rest.front()) < 0x80)
        return !IsNameStart(rest.front()) && !IsDigit(rest.front()) && rest.front() != '.';
    return rest.starts_with(kPilcrow) || rest.starts_with(kNoBreakSpace) || SymbolAt(rest) != nullptr;
}

std::string LowerCase(std::string_view name) {
    std::string lower(name);
    bool ascii = true;
    for (char& character : lower) {
        ascii = ascii && static_cast<unsigned char>(character) < 0x80;
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
    }
    return ascii ? lower : utf::ToLower(lower);
}

} // namespace

Token Lexer::Make(TokenKind kind, std::size_t length) {
    Token token;
    token.kind = kind;
    token.offset = position_;
    token.text = source_.substr(position_, length);
    position_ += token.text.size();
    return token;
}

Token Lexer::Invalid(std::string complaint) const {
    Token token;
    token.kind = TokenKind::kInvalid;
    token.offset = position_;
    token.value = std::move(complaint);
    return token;
}

bool Lexer::SkipBlanks() {
    while (position_ < source_.size()) {
        const std::string_view rest = source_.substr(position_);
        const char first = rest.front();
        if (first == ' ' || first == '\t' || first == '\r' || first == '\n') {
            ++position_;
        } else if (rest.starts_with(kNoBreakSpace)) {
            position_ += kNoBreakSpace.size();
        } else if (rest.starts_with("//")) {
            position_ += std::min(rest.find_first_of("\r\n"), rest.size());
        } else if (rest.starts_with("/*")) {
            const auto end = rest.find("*/", 2);
            if (end == std::string_view::npos) return false;
            position_ += end + 2;
        } else {
            break;
        }
    }
    return true;
}

Token Lexer::Next() {
    if (!SkipBlanks()) return Invalid("this comment has no end");
    if (position_ == source_.size()) return Make(TokenKind::kEnd, 0);
    const std::string_view rest = source_.substr(position_);
    if (rest.front() == '"') return TextLiteral();
    if (IsDigit(rest.front()) || (rest.front() == '.' && rest.size() > 1 && IsDigit(rest[1])))
        return Number();
    if (rest.starts_with("$$")) return Name(TokenKind::kSessionVariable, 2);
    if (rest.front() == '$') return Name(TokenKind::kSessionVariable, 1);
    if (rest.starts_with(kPilcrow)) return Make(TokenKind::kReturn, kPilcrow.size());
    if (SymbolAt(rest) != nullptr) return Symbol();
    if (IsNameStart(rest.front())) return Name(TokenKind::kName, 0);
    return Invalid(std::string("unexpected character \"") + rest.front() + "\"");
}

// \" \\ and \¶ stand for the character itself; any other backslash is kept, so that native paths need no
// doubling. Line ends are the host's: carriage returns.
Token Lexer::TextLiteral() {
    std::string value;
    std::size_t at = position_ + 1;
    while (true) {
        const auto special = source_.find_first_of("\"\\\n\r\xC2", at);
        if (special == std::string_view::npos) return Invalid("this text has no closing quote");
        value += source_.substr(at, special - at);
        at = special;
        const std::string_view rest = source_.substr(at);
        if (rest.front() == '"') break;
        if (rest.starts_with("\\\"") || rest.starts_with("\\\\")) {
            value += rest[1];
            at += 2;
        } else if (rest.front() == '\\' && rest.substr(1).starts_with(kPilcrow)) {
            value += kPilcrow;
            at += 1 + kPilcrow.size();
        } else if (rest.starts_with(kPilcrow)) {
            value += '\r';
            at += kPilcrow.size();
        } else if (rest.front() == '\n' || rest.front() == '\r') {
            value += '\r';
            at += rest.starts_with("\r\n") ? 2U : 1U;
        } else {
            value += rest.front();
            ++at;
        }
    }
    Token token = Make(TokenKind::kText, at + 1 - position_);
    token.value = std::move(value);
    return token;
}

Token Lexer::Number() {
    std::size_t end = position_;
    const auto skip_digits = [&] {
        while (end < source_.size() && IsDigit(source_[end])) ++end;
    };
    skip_digits();
    if (end < source_.size() && source_[end] == '.') {
        ++end;
        skip_digits();
    }
    return Make(TokenKind::kNumber, end - position_);
}

Token Lexer::Name(TokenKind kind, std::size_t prefix) {
    std::size_t end = position_ + prefix;
    while (end < source_.size() && !EndsName(source_.substr(end))) ++end;
    if (end == position_ + prefix) return Invalid("a variable needs a name");
    const std::string_view rest = source_.substr(end);
    if (kind == TokenKind::kName && rest.size() > 2 && rest.starts_with("::") && IsNameStart(rest[2]))
        for (end += 2; end < source_.size() && !EndsName(source_.substr(end));) ++end;
    Token token = Make(kind, end - position_);
    token.value = LowerCase(token.text);
    return token;
}

Token Lexer::Symbol() {
    const SymbolSpelling& symbol = *SymbolAt(source_.substr(position_));
    Token token = Make(TokenKind::kSymbol, symbol.written.size());
    token.text = symbol.ascii;
    return token;
}

ParseError ErrorAt(std::string_view source, std::size_t offset, std::string message) {
    ParseError error{.message = std::move(message)};
    for (std::size_t at = 0; at < offset;) {
        const bool return_before_feed = source.substr(at).starts_with("\r\n");
        const char32_t character = utf::Next(source, at);
        if ((character == U'\r' && !return_before_feed) || character == U'\n') {
            ++error.line;
            error.column = 1;
        } else {
            ++error.column;
        }
    }
    return error;
}

} // namespace host
