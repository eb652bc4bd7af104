#include "sounds/tag_names.h"

#include "plugin/parameters.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace corvane {
namespace {

constexpr std::string_view kDate = "TDRC"; // version 2.4's frame for the time of recording
constexpr std::size_t kYearLength = 4;

constexpr auto kNames = std::to_array<TagName>({
    {"Name", "TIT2", "TT2"},
    {"Album", "TALB", "TAL"},
    {"Artist", "TPE1", "TP1"},
    {"Year", "TYER", "TYE"},
    {"Composer", "TCOM", "TCM"},
    {"Genre", "TCON", "TCO"},
    {"Track", "TRCK", "TRK"},
    {"Disc Number", "TPOS", "TPA"},
    {"Album Artist", "TPE2", "TP2"},
    {"Copyright", "TCOP", "TCR"},
    {"Publisher", "TPUB", "TPB"},
    {"Picture", "APIC", "PIC", TagContent::kBinary},
    {"Comment", "COMM", "COM", TagContent::kComment},
    {"CDID", "MCDI", "MCI", TagContent::kBinary},
    {"BPM", "TBPM", "TBP"},
});

constexpr auto kGenres = std::to_array<std::string_view>(
    {"Blues", "Classic Rock", "Country", "Dance", "Disco", "Funk", "Grunge", "Hip-Hop", "Jazz", "Metal",
     "New Age", "Oldies", "Other", "Pop", "R&B", "Rap", "Reggae", "Rock", "Techno", "Industrial",
     "Alternative", "Ska", "Death Metal", "Pranks", "Soundtrack", "Euro-Techno", "Ambient", "Trip-Hop",
     "Vocal", "Jazz+Funk", "Fusion", "Trance", "Classical", "Instrumental", "Acid", "House", "Game",
     "Sound Clip", "Gospel", "Noise", "AlternRock", "Bass", "Soul", "Punk", "Space", "Meditative",
     "Instrumental Pop", "Instrumental Rock", "Ethnic", "Gothic", "Darkwave", "Techno-Industrial",
     "Electronic", "Pop-Folk", "Eurodance", "Dream", "Southern Rock", "Comedy", "Cult", "Gangsta", "Top 40",
     "Christian Rap", "Pop/Funk", "Jungle", "Native American", "Cabaret", "New Wave", "Psychedelic", "Rave",
     "Showtunes", "Trailer", "Lo-Fi", "Tribal", "Acid Punk", "Acid Jazz", "Polka", "Retro", "Musical",
     "Rock & Roll", "Hard Rock", "Folk", "Folk-Rock", "National Folk", "Swing", "Fast Fusion", "Bebob",
     "Latin", "Revival", "Celtic", "Bluegrass", "Avantgarde", "Gothic Rock", "Progressive Rock",
     "Psychedelic Rock", "Symphonic Rock", "Slow Rock", "Big Band", "Chorus", "Easy Listening", "Acoustic",
     "Humour", "Speech", "Chanson", "Opera", "Chamber Music", "Sonata", "Symphony", "Booty Bass", "Primus",
     "Porn Groove", "Satire", "Slow Jam", "Club", "Tango", "Samba", "Folklore", "Ballad", "Power Ballad",
     "Rhythmic Soul", "Freestyle", "Duet", "Punk Rock", "Drum Solo", "A capella", "Euro-House", "Dance Hall",
     "Goa", "Drum & Bass", "Club-House", "Hardcore", "Terror", "Indie", "Britpop", "Afro-Punk", "Polsk Punk",
     "Beat", "Christian Gangsta Rap", "Heavy Metal", "Black Metal", "Crossover", "Contemporary Christian",
     // With a blank behind it since the first version; scripts compare values with it.
     "Christian Rock ", "Merengue", "Salsa", "Thrash Metal", "Anime", "JPop", "Synthpop"});

bool SameIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && ToLowerAscii(std::string(a)) == ToLowerAscii(std::string(b));
}

// A number that is all of the text.
std::optional<unsigned> WholeNumber(std::string_view text) {
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// "(17)", with one to three digits, stands for a genre of the list; every other text for itself.
std::optional<std::string> GenreName(std::string text) {
    if (text.size() < 3 || text.size() > 5 || text.front() != '(' || text.back() != ')') return text;
    const auto number = WholeNumber(std::string_view(text).substr(1, text.size() - 2));
    if (!number) return text;
    if (*number >= kGenres.size()) return std::nullopt;
    return std::string(kGenres[*number]);
}

} // namespace

const TagName* FindTagName(std::string_view name) {
    const auto found =
        std::ranges::find_if(kNames, [&](const TagName& row) { return SameIgnoringCase(row.name, name); });
    return found != kNames.end() ? &*found : nullptr;
}

const TagName* NameOfFrame(std::string_view id) {
    const auto found = std::ranges::find_if(kNames, [&](const TagName& row) { return IsFrameOf(row, id); });
    return found != kNames.end() ? &*found : nullptr;
}

bool IsFrameOf(const TagName& name, std::string_view id) {
    return id == name.id || id == name.short_id || (id == kDate && name.name == "Year");
}

std::string_view FrameIdFor(const TagName& name, int version) {
    if (version == 2) return name.short_id;
    return version == 4 && IsFrameOf(name, kDate) ? kDate : name.id;
}

std::optional<std::string> TagValue(const Id3Tag& tag, const TagFrame& frame, const TagName& name) {
    if (name.content == TagContent::kBinary) return std::nullopt;
    const std::optional<std::string> data = tag.DataOf(frame);
    std::optional<std::string> text = data ? DecodeTagText(*data, name.content) : std::nullopt;
    if (!text) return text;
    if (name.name == "Genre") return GenreName(std::move(*text));
    // A time stamp ("2004-05-06"), of which the year counts.
    if (frame.id == kDate && text->size() > kYearLength && (*text)[kYearLength] == '-')
        text->resize(kYearLength);
    return text;
}

std::optional<std::uint8_t> GenreNumber(std::string_view text) {
    std::string_view digits = text;
    if (text.starts_with('(')) digits = text.substr(1, std::min(text.find(')'), text.size()) - 1);
    if (const auto number = WholeNumber(digits)) {
        if (*number >= kGenres.size()) return std::nullopt;
        return static_cast<std::uint8_t>(*number);
    }
    const auto found =
        std::ranges::find_if(kGenres, [&](std::string_view genre) { return SameIgnoringCase(genre, text); });
    if (found == kGenres.end()) return std::nullopt;
    return static_cast<std::uint8_t>(found - kGenres.begin());
}

} // namespace corvane
