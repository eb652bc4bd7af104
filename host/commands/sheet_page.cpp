#include "host/commands/sheet_page.h"

#include "platform/text/utf.h"

namespace host {
namespace {

constexpr char kStyle[] = R"(
:root { color-scheme: light dark; --ink: #1b1f24; --dim: #5b6470; --paper: #f4f5f7; --card: #fff; --edge: #d9dde3;
  --mat: #e9ecf0; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #e8eaed; --dim: #a0a8b4; --paper: #14171b; --card: #1e2329; --edge: #323941; --mat: #12151a; }
}
* { box-sizing: border-box; }
body { margin: 0; padding: clamp(.75rem, 3vw, 2rem); background: var(--paper); color: var(--ink);
  font: 1rem/1.4 system-ui, sans-serif; }
header, nav { display: flex; flex-wrap: wrap; gap: .25rem 1rem; align-items: baseline; }
h1 { margin: 0 0 1rem; font-size: 1.4rem; overflow-wrap: anywhere; }
header span, nav { color: var(--dim); }
nav { margin-top: 1rem; }
a { color: inherit; }
ul { display: grid; grid-template-columns: repeat(auto-fill, minmax(clamp(8rem, 40vw, 14rem), 1fr)); gap: 1rem;
  margin: 0; padding: 0; list-style: none; }
li { overflow: hidden; background: var(--card); border: 1px solid var(--edge); border-radius: .5rem; }
.mat { position: relative; display: grid; place-items: center; aspect-ratio: 4 / 3; background: var(--mat); color: var(--dim); }
.mat img { position: absolute; inset: 0; width: 100%; height: 100%; object-fit: scale-down; }
.text { padding: .6rem .75rem .75rem; }
h2 { margin: 0; font-size: 1rem; overflow-wrap: anywhere; }
p { margin: .15rem 0 0; color: var(--dim); font-size: .875rem; overflow-wrap: anywhere; }
details { margin-top: .35rem; font-size: .8125rem; }
summary { color: var(--dim); cursor: pointer; padding: .25rem 0; }
dl { display: grid; grid-template-columns: auto 1fr; gap: .1rem .75rem; margin: .25rem 0 0; }
dt { color: var(--dim); }
dd { margin: 0; overflow-wrap: anywhere; }
)";

// A text as HTML shows it; control characters, which HTML does not allow, are blanks.
std::string Escaped(const std::string& text) {
    std::string html;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t character = utf::Next(text, at);
        switch (character) {
        case U'&': html += "&amp;"; break;
        case U'<': html += "&lt;"; break;
        case U'>': html += "&gt;"; break;
        case U'"': html += "&quot;"; break;
        default: utf::Append(html, character < U' ' || character == U'\x7F' ? U' ' : character);
        }
    }
    return html;
}

std::string CardHtml(const SheetCard& card) {
    std::string html = "<li>";
    if (card.picture.empty()) {
        html += R"(<div class="mat">no picture</div>)";
    } else {
        const std::string picture = Escaped(card.picture);
        html += R"(<a class="mat" href=")" + picture + R"("><img src=")" + picture + R"(" alt=")" +
                Escaped(card.title) + R"(" loading="lazy"></a>)";
    }
    html += R"(<div class="text"><h2>)" + Escaped(card.title) + "</h2><p>" + Escaped(card.summary) + "</p>";
    if (!card.facts.empty()) {
        html += "<details><summary>Details</summary><dl>";
        for (const auto& [name, value] : card.facts)
            html += "<dt>" + Escaped(name) + "</dt><dd>" + Escaped(value) + "</dd>";
        html += "</dl></details>";
    }
    return html + "</div></li>\n";
}

std::string NavigationHtml(std::size_t page, std::size_t count) {
    if (count < 2) return {};
    std::string html = "<nav>";
    if (page > 1) html += R"(<a rel="prev" href=")" + SheetPageName(page - 1) + R"(">Previous page</a>)";
    html += "<span>Page " + std::to_string(page) + " of " + std::to_string(count) + "</span>";
    if (page < count) html += R"(<a rel="next" href=")" + SheetPageName(page + 1) + R"(">Next page</a>)";
    return html + "</nav>\n";
}

} // namespace

std::string SheetPageName(std::size_t page) {
    return page == 1 ? "index.html" : "page-" + std::to_string(page) + ".html";
}

std::string SheetPage(const std::string& title, const std::vector<SheetCard>& cards, std::size_t page,
                      std::size_t count) {
    const std::string heading = Escaped(title);
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n" + std::string(kSheetMark) +
        "\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" + heading +
        "</title>\n<style>" + kStyle + "</style>\n<header><h1>" + heading + "</h1></header>\n<main><ul>\n";
    for (const SheetCard& card : cards) html += CardHtml(card);
    return html + "</ul></main>\n" + NavigationHtml(page, count) + "</html>\n";
}

} // namespace host
