#include "host/engine/lexer.h"

#include <gtest/gtest.h>

#include <vector>

namespace host {
namespace {

// "KIND:value" of each token, up to the end or the first complaint.
std::string Tokens(std::string_view source) {
    constexpr const char* kNames[] = {"",         "text",   "number", "name",
                                      "variable", "return", "symbol", "invalid"};
    Lexer lexer(source);
    std::string result;
    for (Token token = lexer.Next(); token.kind != TokenKind::kEnd; token = lexer.Next()) {
        result += result.empty() ? "" : " ";
        result += kNames[static_cast<std::size_t>(token.kind)];
        result += ':' + (token.value.empty() ? std::string(token.text) : token.value);
        if (token.kind == TokenKind::kInvalid) break;
    }
    return result;
}

TEST(Lexer, CutsTokens) {
    struct Case {
        std::string_view source;
        std::string_view tokens;
    };
    const std::vector<Case> cases = {
        {"", ""},
        {" \t\r\n\u00A0", ""},
        {"Media_GetInfo(1.5;.5)", "name:media_getinfo symbol:( number:1.5 symbol:; number:.5 symbol:)"},
        {"a≠b≤c≥d<>e<=f>=g<h>i",
         "name:a symbol:<> name:b symbol:<= name:c symbol:>= name:d symbol:<> name:e symbol:<= name:f "
         "symbol:>= name:g symbol:< name:h symbol:> name:i"},
        {"$X & $$Été", "variable:$x symbol:& variable:$$été"},
        {"a // to the end\rb /* in * between */ c", "name:a name:b name:c"},
        {"5/2", "number:5 symbol:/ number:2"},
        {R"("say \"a\" \\ C:\Data \¶ ¶")", "text:say \"a\" \\ C:\\Data ¶ \r"},
        {"\"a\nb\r\nc\"", "text:a\rb\rc"},
        {"\"£ Â\"", "text:£ Â"},
        {"x¶y", "name:x return:¶ name:y"},
        {"x\u00A0y", "name:x name:y"},
        {"\"open", "invalid:this text has no closing quote"},
        {R"("open\")", "invalid:this text has no closing quote"},
        {"1 /* open", "number:1 invalid:this comment has no end"},
        {"/*/", "invalid:this comment has no end"},
        {"$ x", "invalid:a variable needs a name"},
        {"#", "invalid:unexpected character \"#\""},
    };
    for (const Case& c : cases) EXPECT_EQ(Tokens(c.source), c.tokens) << c.source;
}

TEST(Lexer, PlacesCountCharactersAndLines) {
    const auto place = [](std::string_view source, std::size_t offset) {
        const ParseError error = ErrorAt(source, offset, "");
        return std::to_string(error.line) + ':' + std::to_string(error.column);
    };
    EXPECT_EQ(place("é≠x", 5), "1:3");
    EXPECT_EQ(place("a\r\nb\rc\nd", 7), "4:1");
    EXPECT_EQ(place("\xFF\xFFx", 2), "1:3");
}

} // namespace
} // namespace host
