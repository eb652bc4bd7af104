// The pages of a contact sheet: HTML that needs no scripts and no network.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

/// One record on the sheet. All texts are UTF-8, and none is HTML yet.
struct SheetCard {
    std::string title;
    std::string picture;                                    ///< beside the page; empty: none
    std::string summary;                                    ///< "640 × 480 · Photo - JPEG"
    std::vector<std::pair<std::string, std::string>> facts; ///< what a person sees when asking for more
};

/// Stands in every page: another run may replace it.
inline constexpr std::string_view kSheetMark = R"(<meta name="generator" content="corvane sheet">)";

/// Name of a page, from 1: "index.html", "page-2.html".
std::string SheetPageName(std::size_t page);

/// Page `page` of `count` with these cards.
std::string SheetPage(const std::string& title, const std::vector<SheetCard>& cards, std::size_t page,
                      std::size_t count);

} // namespace host
