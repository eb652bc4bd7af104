// A sound file with its tags.
#pragma once

#include "sounds/tag_names.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// A tag that is cut short, or of a version or form that nobody knows: neither read nor replaced.
inline constexpr std::int32_t kUnreadableTag = -1;

class TagFile {
public:
    /// Reads the ID3v2 tag at the start of a file (a native path); a file without one has a tag without
    /// frames. -43 when the file can't be read, kUnreadableTag for a tag that can't.
    std::int32_t Link(std::u16string path);

    [[nodiscard]] const Id3Tag& Tag() const { return tag_; }

    /// Removes every frame: the file will have no tag.
    void RemoveAll();
    /// Removes all frames of a name, and adds one with the value (UTF-8) unless that is empty.
    void Set(const TagName& name, std::string_view value);

    /// Writes the file's tags, ID3v2 and ID3v1, into a copy of the file that then takes its place; nothing
    /// when nothing has been changed. 0, -34 on a full disk, -61 where nothing may be written, -43 for a file
    /// that is gone, -47 for one that is in use or has been changed meanwhile, -108 for too large a tag, else
    /// -36; with a code the file is as it was.
    [[nodiscard]] std::int32_t Update() const;

private:
    std::u16string path_;
    std::size_t tag_size_ = 0; ///< of the file's own tag
    Id3Tag tag_;
    std::vector<const TagName*> changed_; ///< since all frames were removed, if they were
    bool removed_all_ = false;
};

} // namespace corvane
