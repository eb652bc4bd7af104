// Cuts a calculation into tokens, one at a time.
#pragma once

#include "host/engine/parse_error.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace host {

enum class TokenKind : std::uint8_t {
    kEnd,
    kText,            ///< a literal; `value` is what it stands for
    kNumber,          ///< digits with an optional point
    kName,            ///< letters, digits, "_" and "."; words such as "and" are names too; two with "::"
                      ///< between them are one
    kSessionVariable, ///< "$name" or "$$name"
    kReturn,          ///< ¶
    kSymbol,          ///< an operator, bracket or separator, in its ASCII spelling ("≠" is "<>")
    kInvalid          ///< `value` is the complaint
};

struct Token {
    TokenKind kind = TokenKind::kEnd;
    std::size_t offset = 0; ///< of the first byte in the source
    std::string_view text;  ///< the token as written; a symbol in its ASCII spelling
    std::string value;      ///< of names and variables: in lower case
};

class Lexer {
public:
    /// `source` is UTF-8 and outlives the lexer and its tokens.
    explicit Lexer(std::string_view source) : source_(source) {}

    Token Next();

private:
    /// Steps over blanks and comments; false when a comment has no end (position_ is then its start).
    bool SkipBlanks();
    Token TextLiteral();
    Token Number();
    Token Name(TokenKind kind, std::size_t prefix);
    Token Symbol();
    Token Make(TokenKind kind, std::size_t length);
    [[nodiscard]] Token Invalid(std::string complaint) const;

    std::string_view source_;
    std::size_t position_ = 0;
};

/// Line and column of a byte offset.
ParseError ErrorAt(std::string_view source, std::size_t offset, std::string message);

} // namespace host
