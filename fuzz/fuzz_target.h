// The entry point of a fuzz target. Each target defines Fuzz.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

/// Uses the input in every way that it can reach; Require what has to be true of it.
void Fuzz(std::string_view);

inline void Require(bool holds) {
    if (!holds) std::abort();
}

/// Takes the bytes in front as a value; what is missing is 0.
template <class Value>
Value Take(std::string_view& input) {
    Value value{};
    const std::size_t size = std::min(input.size(), sizeof value);
    std::memcpy(static_cast<void*>(&value), input.data(), size);
    input.remove_prefix(size);
    return value;
}

/// What was freed is kept back for as long as an input of some KB takes, not for thousands of them: new pages
/// for each cost more than half of the time.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer looks for this name
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "quarantine_size_mb=16";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz({reinterpret_cast<const char*>(data), size});
    return 0;
}
