// Contact sheets: what stands on them, and what a browser makes of them.
#include "host/commands/progress_line.h"
#include "host/commands/sheet_page.h"
#include "tests/host/program.h"

namespace host {
namespace {

class FieldSheet : public Program {
protected:
    FieldSheet() {
        Shell("mkdir in && cd in && /usr/bin/convert -seed 1 -size 1500x1000 plasma:fractal wide.jpg && "
              "/usr/bin/convert -size 30x20 xc:red small.png && cp wide.jpg z.dat && "
              "sox -n -r 44100 -c 2 tone.wav synth 1 sine 440 && echo text >'a & b.txt'");
        EXPECT_EQ(Corvane("db create m.corvane").status, 0);
        EXPECT_EQ(Corvane("db table m.corvane media name:text data:container").status, 0);
        EXPECT_EQ(Corvane("import m.corvane media data in --name-field name").status, 0);
        EXPECT_EQ(Corvane("update m.corvane media 'name=\"<\" & name & \">\"'").status, 0);
    }

    [[nodiscard]] std::string Size(const std::string& picture) const {
        Shell("/usr/bin/identify -format '%m %wx%h' page/pictures/" + picture + " >size");
        return Read("size");
    }

    // What the page says about itself in a window of that width, once it has loaded.
    [[nodiscard]] std::string InBrowser(int width) const {
        Write(
            "page/probe.html",
            Read("page/index.html") +
                R"(<script>onload = () => { document.querySelectorAll("img").forEach(i => i.loading = "eager");
setTimeout(() => { const pictures = [...document.images];
document.body.innerHTML = "pictures " + pictures.filter(i => i.naturalWidth > 0).length + " of " + pictures.length +
", wider " + (document.documentElement.scrollWidth > innerWidth); }, 500); };</script>)");
        Shell("chromium --headless=new --no-sandbox --disable-gpu --user-data-dir=profile "
              "--virtual-time-budget=4000 --dump-dom --window-size=" +
              std::to_string(width) + ",900 \"file://$PWD/page/probe.html\" >dom");
        return Read("dom");
    }
};

TEST_F(FieldSheet, ShowsPicturesWaveformsAndFacts) {
    const Finished run = Corvane("sheet m.corvane media data --to page --name name");
    EXPECT_EQ(run.status, 0) << run.errors;
    const std::string page = Read("page/index.html");
    for (const char* part : {"<h2>&lt;a &amp; b.txt&gt;</h2><p>File</p>", "<p>1500 × 1000 · Photo - JPEG</p>",
                             "<p>Sound · 00:01 · 44100 Hz</p>", "<dt>Number of Channels</dt><dd>2</dd>",
                             "alt=\"&lt;z.dat&gt;\""}) // a picture that was imported as a file
        EXPECT_TRUE(Contains(page, part));
    EXPECT_EQ(page.find("http"), std::string::npos);
    EXPECT_EQ(page.find("<script"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(folder_ + "/page/pictures/1.jpg"));
    EXPECT_EQ(Size("[2345].jpg"), "JPEG 30x20JPEG 640x480JPEG 640x427JPEG 640x427");
    EXPECT_EQ(Corvane("sheet m.corvane media data --to page --where 'id = 1'").status, 0)
        << "a sheet is replaced";
    Write("own/pictures/2.jpg", "my own");
    EXPECT_TRUE(Contains(Corvane("sheet m.corvane media data --to own").errors, "not of a sheet"));
    EXPECT_EQ(Read("own/pictures/2.jpg"), "my own");
    Write("page/index.html", "my own");
    EXPECT_EQ(Corvane("sheet m.corvane media data --to page").status, 2);
    EXPECT_EQ(Read("page/index.html"), "my own");
    Write("page/index.html", page);

    if (std::system("command -v chromium >/dev/null") != 0) GTEST_SKIP() << "no browser";
    for (const int width : {500, 1280})
        EXPECT_TRUE(Contains(InBrowser(width), "pictures 4 of 4, wider false"));
}

TEST_F(FieldSheet, TellsWhatCantBeShown) {
    Sql("UPDATE corvane_streams SET bytes = substr(bytes, 1, 300) WHERE type = 'JPEG'");
    const Finished run =
        Corvane("sheet m.corvane media data --to page --name 'If(id = 2; \"$-5:no\"; name)'");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Contains(run.errors, "record 2: name: -5: no\n"));
    EXPECT_TRUE(Contains(Read("page/index.html"), "<h2>2</h2>"));
    EXPECT_EQ(Corvane("sheet m.corvane media name --to page").status, 2);
}

TEST(SheetPage, LeadsFromPageToPage) {
    const std::vector<SheetCard> cards = {{.title = "t", .picture = {}, .summary = {}, .facts = {}}};
    EXPECT_EQ(SheetPage("t", cards, 1, 1).find("<nav>"), std::string::npos);
    const std::string middle = SheetPage("t", cards, 2, 3);
    EXPECT_TRUE(Contains(middle, "href=\"index.html\">Previous"));
    EXPECT_TRUE(Contains(middle, "href=\"page-3.html\">Next"));
    EXPECT_EQ(SheetPage("t", cards, 3, 3).find("Next"), std::string::npos);
}

TEST(ProgressLine, TellsRateAndRemainingTime) {
    EXPECT_EQ(ProgressLine::Text(0, 0, 4, 0), "[                        ] 0/4");
    EXPECT_EQ(ProgressLine::Text(0, 1, 4, 2), "[######                  ] 1/4  0.5/s  0:06 left");
    EXPECT_EQ(ProgressLine::Text(100, 110, 7310, 5),
              "[                        ] 110/7310  2.0/s  1:00:00 left");
    EXPECT_EQ(ProgressLine::Text(0, 5, 4, 1), "[########################] 5/4  5.0/s  0:00 left");
}

} // namespace
} // namespace host
