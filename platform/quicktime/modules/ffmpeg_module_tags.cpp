// FFmpeg looks for each tag of a file among those before it, and copies all values of a name for each that is
// added to them: some megabytes of nothing but tags would take hours. Nobody asks this module for tags, so
// that neither grows beyond what files have.
//
// When one library calls a function of another, the dynamic linker looks for it in the module first: that is
// how this one comes to be called by the demultiplexers in place of libavutil's own.

#include <cstring>
#include <dlfcn.h>

extern "C" {
#include <libavutil/dict.h>
#include <libavutil/mem.h>
}

namespace {

bool IsFull(const AVDictionary* list, const char* key, int flags) {
    constexpr int kMost = 1000;
    constexpr std::size_t kLongest = 4096;
    if (av_dict_count(list) >= kMost) return true;
    if ((flags & AV_DICT_APPEND) == 0) return false;
    const AVDictionaryEntry* entry = av_dict_get(list, key, nullptr, flags);
    return entry != nullptr && std::strlen(entry->value) > kLongest;
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the library's name of it
extern "C" __attribute__((visibility("default"))) int av_dict_set(AVDictionary** list, const char* key,
                                                                  const char* value, int flags) {
    static const auto own = reinterpret_cast<decltype(&av_dict_set)>(dlsym(RTLD_NEXT, "av_dict_set"));
    if (!IsFull(*list, key, flags)) return own(list, key, value, flags);
    if ((flags & AV_DICT_DONT_STRDUP_KEY) != 0) av_free(const_cast<char*>(key));
    if ((flags & AV_DICT_DONT_STRDUP_VAL) != 0) av_free(const_cast<char*>(value));
    return 0;
}
