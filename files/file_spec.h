// The file specification: the one form that every path syntax is parsed into.
#pragma once

#include "files/vx_object.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// The item lies on a network share, reached by its UNC path.
inline constexpr std::uint32_t kNetworkItem = 2;

/// A path text, and how the item that it names was found: the text stands whatever the code is, unless the
/// operation says otherwise.
struct PathText {
    std::int32_t code = 0;
    std::string text;
};

/// Volume, folders and name of a file or folder. All texts are UTF-8.
///
/// A folder has its own name in `name` and its parents in `folders`; only the root of a volume has an empty
/// name. The operations that answer a code give 0 when the item exists; -43 when it does not exist but the
/// folder that would hold it does; -120 for a missing or unusable folder; -35 for no such volume or a text
/// of no known syntax; any other number is the platform's. After a failed parse the object's content is of
/// no use.
class XFileSpec : public VxObject {
public:
    std::uint32_t flags = 0;          ///< kNetworkItem or 0
    std::string volume;               ///< "C:", or "\" for a network path
    std::vector<std::string> folders; ///< from the root downward; of a network path server and share first
    std::string name;

    void Clear();

    // Parsers (path_syntax.cpp) ---------------------------------------------------------------------------

    /// Host path text: "filewin:/C:/Pictures/x.jpg", "image:x.jpg", "/C:/x", "//server/share/x", "x/y". With
    /// `has_prefix` a path-type word must be there, without it none may be (-50). Relative texts count from
    /// the folder `base`, which may be this object; without one they give -120. The empty text is the base.
    std::int32_t SetFromFileMakerPath(std::string_view text, const XFileSpec* base, bool has_prefix);
    std::int32_t SetFromFileMakerPath(std::string_view text, bool has_prefix);

    /// "C:\Data\x.wav" or "\\server\share\x". A missing parent folder gives the platform's number here.
    std::int32_t SetFromNativePath(std::string_view text);
    std::int32_t SetFromNativePathW(std::u16string_view text);

    /// "/Volumes/D:/x", or "/x" on the system volume.
    std::int32_t SetFromPosixPath(std::string_view text);

    /// A path relative to the folder `base`; the separator is '/' or '\'. "." is passed over, ".." leaves the
    /// folder (-120 above the root), but a text that is all one name is taken as it is.
    std::int32_t SetRelativeTo(std::string_view text, const XFileSpec* base, char separator);

    /// Any of the syntaxes above.
    std::int32_t SetFromText(std::string_view text, const XFileSpec* base);

    /// A file record of the media framework: a length byte at offset 6, then a native path. -50 when the
    /// record is shorter than it says.
    std::int32_t SetFromNameRecord(std::span<const unsigned char> record);

    // Texts (path_texts.cpp) ------------------------------------------------------------------------------

    /// The native path; that of an existing folder ends with "\".
    [[nodiscard]] std::string GetNativePath() const;
    [[nodiscard]] std::u16string GetNativePathW() const;

    /// Host path text, with `prefix_word` + "win:" in front unless the word is empty; code of CheckExists.
    [[nodiscard]] PathText GetFileMakerPath(std::string_view prefix_word) const;

    /// Path from the folder `base` to this item, with `prefix_word` + ":" in front unless the word is empty.
    /// -35 without a text when one of them is not on the system volume, -108 when that is unknown.
    [[nodiscard]] PathText GetRelativePath(std::string_view prefix_word, const XFileSpec& base) const;

    /// The item's own name; of a volume's root the volume.
    [[nodiscard]] const std::string& GetName() const;

    // ------------------------------------------------------------------------------------------------------

    /// To the folder that holds the item; a root stays where it is.
    void MoveToParent();

    [[nodiscard]] bool IsDirectory() const;
    [[nodiscard]] std::int32_t CheckExists() const;

private:
    /// The native path without a look at the disk: whether a folder's ends with "\" is open.
    [[nodiscard]] std::string PlainNativePath() const;
    /// CheckExists of a path that came as native one: the platform's numbers stand, but for -43 and -120.
    [[nodiscard]] std::int32_t CheckNativeItem() const;
    /// Takes folders and name from a text that begins with the separator.
    void SplitPath(std::string_view text, char separator);
};

/// Drive letter and colon of the system folder; empty when the system does not tell.
std::string SystemVolume();

/// The host's path-type word that the text begins with ("imagewin", "file"…); empty when it has none. The
/// colon is not looked at: "files/x.txt" has the prefix "file".
std::string_view FindPathPrefix(std::string_view text);

/// Whether the text begins as a native path of a drive does: "C:\".
bool IsDrivePath(std::string_view text);

} // namespace corvane
