#include "platform/quicktime/user_data.h"

#include "platform/quicktime/movies/atoms.h"
#include "platform/quicktime/movies/handle_bytes.h"

#include <algorithm>
#include <limits>
#include <new>

namespace qt {

struct UserDataRecord {
    struct Texts {
        OSType type;
        std::vector<std::string> texts;
    };
    std::vector<Texts> types;
};

namespace {

auto Find(UserData list, OSType type) {
    return std::ranges::find(list->types, type, &UserDataRecord::Texts::type);
}

} // namespace
} // namespace qt

OSErr NewUserData(UserData* list) {
    *list = new (std::nothrow) qt::UserDataRecord;
    return *list != nullptr ? noErr : memFullErr;
}

void DisposeUserData(UserData list) {
    const std::unique_ptr<qt::UserDataRecord> disposed(list);
}

OSErr AddUserDataText(UserData list, std::string_view text, OSType type) {
    try {
        auto found = qt::Find(list, type);
        if (found == list->types.end()) found = list->types.insert(found, {type, {}});
        found->texts.emplace_back(text);
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
    return noErr;
}

OSType GetNextUserDataType(UserData list, OSType type) {
    auto next = list->types.begin();
    if (type != 0) {
        next = qt::Find(list, type);
        if (next != list->types.end()) ++next;
    }
    return next != list->types.end() ? next->type : 0;
}

std::int16_t CountUserDataType(UserData list, OSType type) {
    const auto found = qt::Find(list, type);
    constexpr std::size_t kMost = std::numeric_limits<std::int16_t>::max();
    return found != list->types.end() ? static_cast<std::int16_t>(std::min(found->texts.size(), kMost))
                                      : std::int16_t{0};
}

OSErr GetUserDataText(UserData list, std::string& text, OSType type, std::int32_t index) {
    const auto found = qt::Find(list, type);
    if (found == list->types.end() || index < 1 || static_cast<std::size_t>(index) > found->texts.size())
        return userDataItemNotFound;
    try {
        text = found->texts[static_cast<std::size_t>(index - 1)];
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
    return noErr;
}

OSErr PutUserDataIntoHandle(UserData list, Handle block) {
    qt::AtomWriter writer;
    for (const auto& [type, texts] : list->types)
        for (const std::string& text : texts) writer.Atom(type, [&] { writer.Put(text); });
    return qt::SetHandleBytes(block, writer.Take());
}
