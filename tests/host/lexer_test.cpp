#include "host/engine/lexer.h"

#include <gtest/gtest.h>

#include <utility>

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
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"", ""},
        {" \t\r\n\u00A0", ""},
        {"Media_GetInfo(1.5;.5)", "name:media_getinfo symbol:( number:1.5 symbol:; number:.5 symbol:)"},
        {"$X & $$Été", "variable:$x symbol:& variable:$$été"},
        {"a // to the end\rb /* in * between */ c", "name:a name:b name:c"},
        {R"("say \"a\" \\ C:\Data \¶ ¶")", "text:say \"a\" \\ C:\\Data ¶ \r"},
        {"\"a\nb\r\nc\"", "text:a\rb\rc"},
        {"\"£ Â\"", "text:£ Â"},
        {"x¶y", "name:x return:¶ name:y"},
        {"x\u00A0y", "name:x name:y"},
        {R"("open\")", "invalid:this text has no closing quote"},
        {"1 /* open", "number:1 invalid:this comment has no end"},
        {"/*/", "invalid:this comment has no end"},
        {"$ x", "invalid:a variable needs a name"},
        {"#", "invalid:unexpected character \"#\""},
    };
    for (const auto& [source, tokens] : cases) EXPECT_EQ(Tokens(source), tokens) << source;
}

} // namespace
} // namespace host
